// SPDX-License-Identifier: GPL-3.0-or-later

/** A small card at a button: opens and closes by it, and closes when the pointer or the keyboard goes elsewhere. */
export class Popup {
  #button;
  #card;
  #closed;

  /** closed(): called after it has closed. */
  constructor(button, card, closed = () => {}) {
    this.#button = button;
    this.#card = card;
    this.#closed = closed;
    const isOurs = (element) => card.contains(element) || button.contains(element);
    button.ownerDocument.addEventListener('pointerdown', (event) => {
      if (this.open && !isOurs(event.target)) this.close();
    });
    for (const element of [card, button]) {
      element.addEventListener('focusout', (event) => {
        // Where nothing gets the focus, a press has taken it, and that is told above.
        if (this.open && event.relatedTarget && !isOurs(event.relatedTarget)) this.close();
      });
    }
  }

  get open() {
    return !this.#card.hidden;
  }

  show() {
    this.#card.hidden = false;
    this.#button.setAttribute('aria-expanded', 'true');
  }

  close() {
    if (!this.open) return;
    this.#card.hidden = true;
    this.#button.setAttribute('aria-expanded', 'false');
    this.#closed();
  }
}
