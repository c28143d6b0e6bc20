// SPDX-License-Identifier: GPL-3.0-or-later

// A click on the picture pauses or goes on. The second press of a double-click belongs to the player, which goes to
// full screen with it; the page sees only the first click, and then the change. So a click waits a little, and one
// that a change of the screen follows is taken back.

const doubleClickMs = 250;
const takeBackMs = 900;

export class PictureClick {
  #toggle;
  #now;
  #timer = null;
  #toggledAt = -Infinity;

  constructor(toggle, now) {
    this.#toggle = toggle;
    this.#now = now;
  }

  clicked() {
    if (this.#timer !== null) {
      this.#forget(); // a double-click that the page sees whole is none of its business either
      return;
    }
    this.#timer = setTimeout(() => {
      this.#timer = null;
      this.#toggledAt = this.#now();
      this.#toggle();
    }, doubleClickMs);
  }

  screenChanged() {
    if (this.#timer !== null) {
      this.#forget(); // what an earlier click did stays
      return;
    }
    if (this.#now() - this.#toggledAt < takeBackMs) {
      this.#toggledAt = -Infinity;
      this.#toggle();
    }
  }

  #forget() {
    clearTimeout(this.#timer);
    this.#timer = null;
  }
}
