// SPDX-License-Identifier: GPL-3.0-or-later

const hoverMs = 450;
const wandersMs = 400;

/** Names a button over which the pointer rests, or to which the keyboard has come, and the key that does the same. */
export class Tips {
  #tip;
  #document;
  #timer = null;
  #hiddenAt = -Infinity;

  /** buttons: an element; its buttons carry aria-label and, where there is one, data-keys. */
  constructor(document, buttons) {
    this.#document = document;
    this.#tip = document.getElementById('tip');
    buttons.addEventListener('pointerover', (event) => this.#over(event.target.closest('button')));
    buttons.addEventListener('pointerleave', () => this.hide());
    buttons.addEventListener('pointerdown', () => this.hide());
    buttons.addEventListener('focusin', (event) => {
      if (event.target.matches('button:focus-visible')) this.#show(event.target);
    });
    buttons.addEventListener('focusout', () => this.hide());
    document.addEventListener('keydown', () => this.hide());
  }

  hide() {
    clearTimeout(this.#timer);
    if (this.#tip.hidden) return;
    this.#hiddenAt = performance.now();
    this.#tip.hidden = true;
  }

  #over(button) {
    const wanders = !this.#tip.hidden || performance.now() - this.#hiddenAt < wandersMs;
    this.hide();
    if (!button || button.disabled || button.closest('#more-card, #audio-menu')) return;
    this.#timer = setTimeout(() => this.#show(button), wanders ? 0 : hoverMs);
  }

  #show(button) {
    const label = button.dataset.tip ?? button.getAttribute('aria-label');
    if (!label || button.getAttribute('aria-expanded') === 'true') return;
    const keys = button.dataset.keys ?? '';
    const [name, key] = this.#tip.children;
    name.textContent = label;
    key.textContent = keys;
    key.hidden = keys === '';
    this.#tip.hidden = false;
    const { left, width, top } = button.getBoundingClientRect();
    const half = this.#tip.offsetWidth / 2;
    const room = this.#document.documentElement.clientWidth;
    const middle = Math.min(room - half - 6, Math.max(half + 6, left + width / 2));
    const above = top - this.#tip.offsetHeight - 5;
    this.#tip.style.transform = `translate(${Math.round(middle - half)}px, ${Math.round(above)}px)`;
  }
}
