// SPDX-License-Identifier: GPL-3.0-or-later

/**
 * A panel that a button opens, with a choice in it. A click outside closes it; Enter, the space bar and Escape in it do
 * so, too, and give the focus back.
 */
export class Popover {
  #box;
  #panel;

  constructor(document, box, panel) {
    this.#box = box;
    this.#panel = panel;
    box.addEventListener('click', () => this.show(panel.hidden));
    panel.addEventListener('keydown', (event) => {
      if (!['Enter', ' ', 'Escape'].includes(event.key)) return;
      event.preventDefault(); // the button that gets the focus would be pressed by the same key
      this.show(false);
    });
    panel.addEventListener('click', (event) => {
      // Arrow keys "click" a choice as well, but at no place: only a real click has made it.
      if (event.detail > 0 && event.target.closest('label')) this.show(false);
    });
    document.addEventListener('pointerdown', (event) => {
      if (!panel.contains(event.target) && !box.contains(event.target)) this.show(false, false);
    });
  }

  get isOpen() {
    return !this.#panel.hidden;
  }

  show(open, moveFocus = true) {
    if (this.#panel.hidden === !open) return;
    this.#panel.hidden = !open;
    this.#box.setAttribute('aria-expanded', String(open));
    if (!moveFocus) return;
    if (open) this.#panel.querySelector('input:checked')?.focus();
    else this.#box.focus();
  }
}
