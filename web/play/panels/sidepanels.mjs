// SPDX-License-Identifier: GPL-3.0-or-later

// The panels beside the picture: one at a time, and all of them opened, closed and left alike.

import { giveBackPresses, keepPresses } from './presses.mjs';

const pressed = ['range', 'radio', 'checkbox', 'file'].map((type) => `:not([type="${type}"])`).join('');
const textField = `input${pressed}, textarea, select`;
const editing = new Set(['a', 'c', 'v', 'x', 'y', 'z', 'backspace', 'delete', 'home', 'end']);

/**
 * Whether a key press belongs to a panel, and not to the film. focused: what has the focus there: 'field' (text),
 * 'list', 'part' (a button and the like), 'body': a panel that has more to show than is seen; '': one that has not.
 */
export function belongsToPanel({ key, ctrlKey, metaKey }, focused) {
  if (focused === 'body') return /^(Arrow(Up|Down)|Page|Home|End)/.test(key) && !ctrlKey && !metaKey;
  if (focused === 'list') return /^(Arrow(Up|Down)|Page|Home|End|Enter)/.test(key) && !ctrlKey && !metaKey;
  if (focused === 'part') return /^(Arrow|Page|Home|End| |Enter)/.test(key);
  if (focused !== 'field' || /^(F\d|Escape)/.test(key)) return false;
  return !(ctrlKey || metaKey) || key.startsWith('Arrow') || editing.has(key.toLowerCase());
}

function focusedIn(panel, target) {
  if (target.matches('[role="listbox"]')) return 'list';
  if (target !== panel) return target.matches(textField) ? 'field' : 'part';
  return panel.scrollHeight > panel.clientHeight ? 'body' : '';
}

export class SidePanels {
  #document;
  #panels = new Map();
  #open = null;
  #opener = null; // what had the focus before

  constructor(document) {
    this.#document = document;
    document.getElementById('picture').addEventListener('pointerdown', () => {
      if (this.closesByPress) this.close();
    });
  }

  /**
   * element: with tabindex -1. button: which shows whether it is open; may be missing. opened(), closed(): called after
   * it. stays: it is made to lie there while the film plays, so that a click on the picture pauses and does not close
   * it, and the bar may fade.
   */
  add(name, { element, button = null, opened = () => {}, closed = () => {}, stays = false }) {
    this.#panels.set(name, { name, element, button, opened, closed, stays });
    element.classList.add('side-panel', 'glass');
    button?.setAttribute('aria-expanded', 'false');
    button?.setAttribute('aria-controls', element.id);
    keepPresses(element);
    element.addEventListener('keydown', (event) => {
      if (belongsToPanel(event, focusedIn(element, event.target))) event.stopPropagation();
    });
  }

  isOpen(name) {
    return this.#open?.name === name;
  }

  /** A press on the picture closes what is open. */
  get closesByPress() {
    return this.#open !== null && !this.#open.stays;
  }

  toggle(name) {
    if (this.isOpen(name)) this.close();
    else this.open(name);
  }

  open(name) {
    if (this.isOpen(name)) return;
    const opener = this.#open ? this.#opener : this.#document.activeElement;
    this.#hide();
    this.#opener = opener;
    this.#open = this.#panels.get(name);
    const { element, button, opened } = this.#open;
    element.hidden = false;
    this.#document.body.dataset.panel = name; // the lines make room
    button?.setAttribute('aria-expanded', 'true');
    element.focus({ focusVisible: false });
    opened();
  }

  close() {
    if (!this.#open) return;
    const focused = this.#document.activeElement;
    const hadFocus = this.#open.element.contains(focused);
    this.#hide();
    if (!hadFocus) return;
    // Back to where the keyboard was; a button that was clicked never had it.
    if (this.#opener && this.#opener !== this.#document.body) this.#opener.focus();
    else focused.blur();
  }

  #hide() {
    if (!this.#open) return;
    const { element, button, closed } = this.#open;
    this.#open = null;
    element.hidden = true;
    delete this.#document.body.dataset.panel;
    button?.setAttribute('aria-expanded', 'false');
    giveBackPresses(this.#document);
    closed();
  }
}
