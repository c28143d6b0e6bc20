// SPDX-License-Identifier: GPL-3.0-or-later

import { t } from '../../shared/texts.mjs';

const shownMs = 7000;

/** A short word at the page's lower edge, perhaps with a button that takes back what it tells of. */
export class Toast {
  #box;
  #text;
  #undo;
  #undoIt = null;
  #timer = null;

  constructor(document) {
    this.#box = document.getElementById('toast');
    this.#text = document.getElementById('toast-text');
    this.#undo = document.getElementById('toast-undo');
    this.#undo.addEventListener('click', () => this.#undoIt?.());
  }

  /** With undo() it shows until it is hidden, else for a while. */
  show(text, undo = null) {
    clearTimeout(this.#timer);
    this.#undoIt = undo;
    this.#undo.hidden = !undo;
    this.#undo.title = undo ? t('home.undoKey') : '';
    this.#box.hidden = false;
    this.#text.textContent = text;
    if (!undo) this.#timer = setTimeout(() => this.hide(), shownMs);
  }

  hide() {
    clearTimeout(this.#timer);
    this.#undoIt = null;
    this.#box.hidden = true;
    this.#text.textContent = '';
  }

  /** Whether there was something to take back. */
  undo() {
    if (!this.#undoIt) return false;
    this.#undoIt();
    return true;
  }
}
