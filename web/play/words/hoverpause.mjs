// SPDX-License-Identifier: GPL-3.0-or-later

/** Pauses the film while the pointer is on a line, where the learner wants it so. */
export class HoverPause {
  #film;
  #isWanted;
  #holds = false;

  /** elements: the places of the lines; isWanted(): the learner's setting. */
  constructor(film, elements, isWanted) {
    this.#film = film;
    this.#isWanted = isWanted;
    for (const element of elements) {
      element.addEventListener('pointerenter', () => this.#enter());
      element.addEventListener('pointerleave', () => this.#leave());
    }
  }

  /** Whether the film stands only because of the pointer; from now on it is another's to let it go on. */
  handOver() {
    const held = this.#holds;
    this.#holds = false;
    return held;
  }

  #enter() {
    if (!this.#isWanted() || !this.#film.playing || this.#film.ended) return;
    this.#holds = true;
    this.#film.setPlaying(false);
  }

  #leave() {
    if (!this.#holds) return;
    this.#holds = false;
    if (!this.#film.playing) this.#film.setPlaying(true);
  }
}
