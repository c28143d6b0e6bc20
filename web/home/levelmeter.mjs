// SPDX-License-Identifier: GPL-3.0-or-later

// The learner's level of English in the page's header, with how far it is to the next one.

const numbers = new Intl.NumberFormat('en');

/** What the meter shows, as a sentence. */
export function levelText({ level, nextLevel, percentToNext, vocabulary }) {
  const words = `about ${numbers.format(vocabulary)} words`;
  return nextLevel ? `Level ${level}, ${percentToNext} % of the way to ${nextLevel}, ${words}` : `Level ${level}, ${words}`;
}

export class LevelMeter {
  #meter;
  #level;
  #filled;
  #next;

  constructor(document) {
    this.#meter = document.getElementById('level');
    this.#level = this.#meter.querySelector('.now');
    this.#filled = this.#meter.querySelector('.filled');
    this.#next = this.#meter.querySelector('.next');
  }

  show(reply) {
    this.#level.textContent = reply.level;
    this.#next.textContent = reply.nextLevel ?? '';
    this.#filled.style.width = `${reply.percentToNext}%`;
    this.#meter.setAttribute('aria-label', levelText(reply));
    this.#meter.title = levelText(reply);
    this.#meter.hidden = false;
  }
}
