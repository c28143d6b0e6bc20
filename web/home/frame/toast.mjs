// SPDX-License-Identifier: GPL-3.0-or-later

import { t } from '../../shared/texts.mjs';

const shownMs = 7000;

/**
 * Short words at the page's lower edge: what was done and can be taken back, and above it, for a while, a hint. While
 * one points at them or has the focus in them, their time stands still.
 */
export class Toast {
  #document;
  #tools;
  #box;
  #hint;
  #undoIt = null;
  #timer = null;
  #isPointedAt = false;
  #cameFrom = null; // what had the focus before the button got it

  /** tools: { hold(isHeld): the time to take something back stands still or goes on, leave() for the focus }. */
  constructor(document, tools) {
    this.#document = document;
    this.#tools = tools;
    this.#box = document.getElementById('toast');
    this.#hint = document.getElementById('hint');
    document.getElementById('toast-undo').addEventListener('click', () => this.#undoIt?.());
    const root = document.getElementById('toasts');
    root.addEventListener('pointerenter', () => this.#point(true));
    root.addEventListener('pointerleave', () => this.#point(false));
    root.addEventListener('focusin', ({ relatedTarget }) => {
      this.#cameFrom = relatedTarget;
      this.#hold();
    });
    root.addEventListener('focusout', () => queueMicrotask(() => this.#hold()));
  }

  /** A hint, which goes by itself. */
  tell(text) {
    this.#put(this.#hint, text);
    this.#hold();
  }

  /** What was done, until it is hidden; undo() takes it back. */
  offer(text, undo) {
    this.#undoIt = undo;
    this.#document.getElementById('toast-undo').title = t('home.undoKey');
    this.#put(this.#box, text);
    this.#hold();
  }

  /** What was done can no longer be taken back. */
  hide() {
    const hadFocus = this.#box.contains(this.#document.activeElement);
    this.#undoIt = null;
    this.#put(this.#box, '');
    if (!hadFocus) return;
    const isThere = this.#cameFrom?.isConnected && this.#cameFrom.getClientRects().length > 0;
    if (isThere) this.#cameFrom.focus();
    else this.#tools.leave();
  }

  /** Whether there was something to take back. */
  undo() {
    if (!this.#undoIt) return false;
    this.#undoIt();
    return true;
  }

  #put(box, text) {
    box.hidden = !text;
    box.querySelector('[role="status"]').textContent = text;
    if (this.#box.hidden && this.#hint.hidden) this.#isPointedAt = false; // nothing is left to be left
  }

  #point(isPointedAt) {
    this.#isPointedAt = isPointedAt;
    this.#hold();
  }

  #hold() {
    const isHeld = this.#isPointedAt || this.#box.contains(this.#document.activeElement);
    if (!this.#box.hidden) this.#tools.hold(isHeld);
    clearTimeout(this.#timer);
    if (!isHeld && !this.#hint.hidden) this.#timer = setTimeout(() => this.#put(this.#hint, ''), shownMs);
  }
}
