// SPDX-License-Identifier: GPL-3.0-or-later

import { Hold } from '../film/hold.mjs';

/** Pauses the film while the pointer is on a line, where the learner wants it so. */
export class HoverPause {
  #hold;

  /** elements: the places of the lines; isWanted(): the learner's setting. */
  constructor(film, elements, isWanted) {
    this.#hold = new Hold(film);
    for (const element of elements) {
      element.addEventListener('pointerenter', () => { if (isWanted() && film.playing) this.#hold.take(); });
      element.addEventListener('pointerleave', () => this.#hold.letGo());
    }
  }

  /** To be called after changes of the film. */
  update() {
    this.#hold.update();
  }

  /** Whether the film stands only because of the pointer; from now on it is another's to let it go on. */
  handOver() {
    return this.#hold.drop();
  }
}
