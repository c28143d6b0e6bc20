// SPDX-License-Identifier: GPL-3.0-or-later

/** Looks at something while a panel is open, again some while after each look has ended. */
export class Polling {
  #look;
  #pauseMs;
  #timer = null;
  #isOn = false;
  #run = 0; // another one after each beginning and end

  /** look(): a promise that always keeps; after false it rests until again() is called. */
  constructor(look, pauseMs) {
    this.#look = look;
    this.#pauseMs = pauseMs;
  }

  start() {
    this.#isOn = true;
    return this.again();
  }

  stop() {
    this.#isOn = false;
    this.#rest();
  }

  /** Looks at once, between start() and stop(). */
  async again() {
    this.#rest();
    const run = this.#run;
    if (!this.#isOn) return;
    const goesOn = await this.#look() !== false;
    if (goesOn && run === this.#run) this.#timer = setTimeout(() => this.again(), this.#pauseMs);
  }

  #rest() {
    this.#run += 1;
    clearTimeout(this.#timer);
  }
}
