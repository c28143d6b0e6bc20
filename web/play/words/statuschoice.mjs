// SPDX-License-Identifier: GPL-3.0-or-later

import { button, create } from '../../shared/elements.mjs';
import { t } from '../../shared/texts.mjs';

const steps = ['new', 'learning1', 'learning2', 'learning3', 'learning4', 'known', 'ignored'];
const marks = { new: '0', learning1: '1', learning2: '2', learning3: '3', learning4: '4', known: '✓', ignored: '–' };

/** The status that an action by key gives the word of the open card. */
export const statusOfAction = {
  grade0: 'new', grade1: 'learning1', grade2: 'learning2', grade3: 'learning3', grade4: 'learning4', grade5: 'known', ignoreWord: 'ignored',
};

/** How well a word is known, as a row of buttons. */
export class StatusChoice {
  #buttons = new Map();
  #said;
  #status = null;

  /** chosen(status): a button was pressed. */
  constructor(document, chosen) {
    for (const status of steps) {
      this.#buttons.set(status, button(document, { className: `step ${status}` }, () => chosen(status), marks[status]));
    }
    this.#said = create(document, 'span', { className: 'said', role: 'status' });
    this.element = create(document, 'div', { className: 'statuses', role: 'group' }, ...this.#buttons.values(), this.#said);
  }

  show(status) {
    this.#status = status;
    this.element.setAttribute('aria-label', t('card.howWell'));
    this.#said.dataset.unsaid = t('card.howWell'); // shows while nothing else does
    for (const [name, each] of this.#buttons) {
      each.setAttribute('aria-pressed', String(name === status));
      each.setAttribute('aria-label', t(`status.${name}`));
      each.title = t(`status.${name}`);
    }
    this.#said.textContent = status ? t(`status.${status}`) : '';
  }

  /** Says the status once more to those who listen. */
  announce() {
    this.#said.textContent = '';
    this.show(this.#status);
  }
}
