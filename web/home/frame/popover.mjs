// SPDX-License-Identifier: GPL-3.0-or-later

/**
 * A panel that a button opens, with a choice in it. It closes when something outside is clicked or gets the focus;
 * Enter, the space bar and Escape in it do so, too, and give the focus back.
 */
export class Popover {
  #box;
  #panel;
  #opener; // the button that has opened it: its box, or another one

  constructor(document, box, panel) {
    this.#box = box;
    this.#panel = panel;
    this.#opener = box;
    box.addEventListener('click', () => this.toggle());
    panel.addEventListener('keydown', (event) => {
      if (!['Enter', ' ', 'Escape'].includes(event.key)) return;
      event.preventDefault(); // the button that gets the focus would be pressed by the same key
      this.show(false);
    });
    panel.addEventListener('click', (event) => {
      // Arrow keys "click" a choice as well, but at no place: only a real click has made it.
      if (event.detail > 0 && event.target.closest('label')) this.show(false);
    });
    const closeFor = (place) => {
      if (!panel.contains(place) && !this.#opener.contains(place)) this.show(false, false);
    };
    document.addEventListener('pointerdown', ({ target }) => closeFor(target));
    document.addEventListener('focusin', ({ target }) => closeFor(target));
    // Behind the last choice there is perhaps nothing to go to; a list that is made anew is given the focus again.
    panel.addEventListener('focusout', () => setTimeout(() => closeFor(document.activeElement)));
  }

  get isOpen() {
    return !this.#panel.hidden;
  }

  /** opener: the button that was pressed, which gets the focus back. */
  toggle(opener = this.#box) {
    if (!this.isOpen) this.#opener = opener;
    this.show(!this.isOpen);
  }

  show(open, moveFocus = true) {
    if (this.isOpen === open) return;
    this.#panel.hidden = !open;
    for (const button of new Set([this.#box, this.#opener])) button.setAttribute('aria-expanded', String(open));
    if (!moveFocus) return;
    if (open) (this.#panel.querySelector('input:checked') ?? this.#panel).focus();
    else this.#opener.focus();
  }
}
