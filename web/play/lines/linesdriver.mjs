// SPDX-License-Identifier: GPL-3.0-or-later

// Shows each line at its time: sleeps until the next line begins or ends, and draws only then.

const shortestSleepMs = 1;
// A timer set for more than some weeks would fire at once.
const longestSleepMs = 60_000;

export class LinesDriver {
  #film;
  #tracks = []; // { index, view }
  #timer = null;
  #now;

  constructor(film, now) {
    this.#film = film;
    this.#now = now;
  }

  setTracks(tracks) {
    this.#tracks = tracks;
    this.update();
  }

  /** To be called whenever the film's time may have changed otherwise than by running on. */
  update() {
    clearTimeout(this.#timer);
    this.#timer = null;
    const position = this.#film.shownMs;
    if (position === null) return;
    let next = Infinity;
    for (const { index, view } of this.#tracks) {
      view.show(index.at(position));
      next = Math.min(next, index.nextChange(position));
    }
    if (next < Infinity && this.#film.clock.moves(this.#now())) {
      const sleepMs = Math.max(shortestSleepMs, (next - position) / this.#film.speed);
      this.#timer = setTimeout(() => this.update(), Math.min(longestSleepMs, sleepMs));
    }
  }
}
