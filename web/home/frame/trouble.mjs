// SPDX-License-Identifier: GPL-3.0-or-later

const shownMs = 12_000;

/** The page's line for what went wrong: the latest of it, until its own source has come right or a while has passed. */
export class Trouble {
  #line;
  #errors = new Map(); // source -> message, the latest last
  #timer = null;

  constructor(line) {
    this.#line = line;
  }

  /** source: what failed; error: null when it has come right. */
  tell(source, error) {
    const had = this.#errors.delete(source);
    if (error) this.#errors.set(source, error.message);
    else if (!had) return;
    clearTimeout(this.#timer);
    this.#timer = setTimeout(() => this.#forget(), shownMs);
    this.#show();
  }

  #forget() {
    this.#errors.clear();
    this.#show();
  }

  #show() {
    const text = [...this.#errors.values()].pop() ?? '';
    if (this.#line.textContent !== text) this.#line.textContent = text;
  }
}
