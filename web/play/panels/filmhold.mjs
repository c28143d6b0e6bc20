// SPDX-License-Identifier: GPL-3.0-or-later

/** Holds the film for a while. What somebody else has set going meanwhile, or what is over, is not set going again. */
export class FilmHold {
  #film;
  #playsOn = false;

  constructor(film) {
    this.#film = film;
  }

  hold() {
    if (!this.#film.playing || this.#film.ended) return;
    this.#film.setPlaying(false);
    this.#playsOn = true;
  }

  /** To be called after changes of the film. */
  update() {
    if (this.#film.playing || this.#film.ended) this.#playsOn = false;
  }

  letGo() {
    const playsOn = this.#playsOn;
    this.#playsOn = false;
    if (playsOn) this.#film.setPlaying(true);
  }
}
