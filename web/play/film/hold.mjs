// SPDX-License-Identifier: GPL-3.0-or-later

/** Makes the film wait for the learner, and lets it go on only where nobody has said otherwise meanwhile. */
export class Hold {
  #film;
  #isHolding = false;
  #goesOn = false;

  constructor(film) {
    this.#film = film;
  }

  /** goesOn: whether the film is to go on when it is let go; else that depends on whether it plays now. */
  take(goesOn = this.#film.playing && !this.#film.ended) {
    if (this.#isHolding) return;
    this.#isHolding = true;
    this.#goesOn = goesOn;
    if (this.#film.playing && !this.#film.ended) this.#film.setPlaying(false);
  }

  /** To be called after changes of the film: one that plays again or is over is held no longer. */
  update() {
    if (this.#film.playing || this.#film.ended) this.drop();
  }

  /** Leaves the film as it is; whether it would have gone on. */
  drop() {
    const goesOn = this.#goesOn;
    this.#isHolding = false;
    this.#goesOn = false;
    return goesOn;
  }

  letGo() {
    if (this.drop() && !this.#film.playing) this.#film.setPlaying(true);
  }
}
