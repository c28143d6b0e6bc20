// SPDX-License-Identifier: GPL-3.0-or-later

/** Answers to questions, each asked once; a failure is no answer, and is asked for again. */
export class Answers {
  #known = new Map(); // key -> promise

  has(key) {
    return this.#known.has(key);
  }

  /** ask(): the promise for a key that is not known yet. */
  of(key, ask) {
    if (!this.#known.has(key)) {
      const answer = ask();
      this.#known.set(key, answer);
      answer.catch(() => { if (this.#known.get(key) === answer) this.#known.delete(key); });
    }
    return this.#known.get(key);
  }

  clear() {
    this.#known.clear();
  }
}
