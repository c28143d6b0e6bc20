// SPDX-License-Identifier: GPL-3.0-or-later

import { button, create } from '../../shared/elements.mjs';
import { t } from '../../shared/texts.mjs';
import { listPart } from './listpart.mjs';

/** A list to paste, of words that the learner knows or of those that this program has given. */
export class ImportPart {
  #api;
  #imported;
  #list;
  #state;

  /** imported(): words have come. */
  constructor(document, api, imported) {
    this.#api = api;
    this.#imported = imported;
    this.#list = create(document, 'textarea', {
      className: 'field', rows: 4, spellcheck: false, ariaLabel: t('lists.importLabel'),
      placeholder: t('lists.importExample'),
    });
    this.#state = create(document, 'p', { className: 'state', role: 'status' });
    this.element = listPart(document, t('lists.import'), create(document, 'p', { textContent: t('lists.importText') }),
      this.#list,
      create(document, 'div', { className: 'buttons' },
        button(document, { className: 'field' }, () => this.#import(), t('lists.importNow'))),
      this.#state);
  }

  async #import() {
    if (!this.#list.value.trim()) {
      this.#list.focus();
      return;
    }
    try {
      const { added, known, kept, unreadable } = await this.#api.importWords(this.#list.value);
      const rest = [
        known > 0 && t('lists.importKnown', { count: known }), kept > 0 && t('lists.importKept', { count: kept }),
        unreadable > 0 && t('lists.importUnreadable', { count: unreadable }),
      ].filter(Boolean);
      this.#state.textContent = [t('lists.importAdded', { count: added }), ...rest].join(' ');
      this.#list.value = '';
      this.#imported();
    } catch (error) {
      this.#state.textContent = error.message;
    }
  }
}
