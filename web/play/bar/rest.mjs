// SPDX-License-Identifier: GPL-3.0-or-later

// Hides the controls and the pointer when the pointer rests.

const restMs = 2500;

export class PointerRest {
  #body;
  #mayHide;
  #timer = null;

  /** mayHide(): false while the controls must stay in sight. */
  constructor(body, mayHide) {
    this.#body = body;
    this.#mayHide = mayHide;
    for (const name of ['pointermove', 'pointerdown', 'focusin']) {
      body.ownerDocument.addEventListener(name, () => this.wake());
    }
    body.addEventListener('pointerleave', () => this.#rest());
    this.wake();
  }

  wake() {
    this.#body.classList.remove('resting');
    clearTimeout(this.#timer);
    this.#timer = setTimeout(() => this.#rest(), restMs);
  }

  #rest() {
    if (this.#mayHide()) this.#body.classList.add('resting');
    else this.wake();
  }
}
