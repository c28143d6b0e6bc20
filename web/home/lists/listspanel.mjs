// SPDX-License-Identifier: GPL-3.0-or-later

import { button, create } from '../../shared/elements.mjs';
import { t } from '../../shared/texts.mjs';
import { AnkiPart } from './ankipart.mjs';
import { ImportPart } from './importpart.mjs';
import { LearnerPart } from './learnerpart.mjs';
import { listPart } from './listpart.mjs';
import { PackagePart } from './packagepart.mjs';

/** The panel in which words leave the program and come into it: files, Anki, lists to paste, the learner's own file. */
export class ListsPanel {
  #document;
  #api;
  #tools;
  #dialog;
  #parts = [];
  #isBusy = false; // all is being replaced: nothing else is to be begun

  /** tools: { imported() when words have come, beforeBringing() and broughtBack() as LearnerPart has them }. */
  constructor(document, api, tools) {
    this.#document = document;
    this.#api = api;
    this.#tools = tools;
    this.#dialog = document.getElementById('lists');
    this.#dialog.addEventListener('close', () => this.#parts.forEach((part) => part.closed?.()));
    this.#dialog.addEventListener('cancel', (event) => { if (this.#isBusy) event.preventDefault(); });
    this.#dialog.addEventListener('click', (event) => {
      if (event.target === this.#dialog) this.#close(); // beside it
    });
  }

  open() {
    this.#build();
    this.#dialog.showModal();
    for (const part of this.#parts) part.opened?.();
  }

  #close() {
    if (!this.#isBusy) this.#dialog.close();
  }

  // Anew each time, in the language of then.
  #build() {
    const d = this.#document;
    const before = [
      new PackagePart(d, this.#api), new AnkiPart(d, this.#api), new ImportPart(d, this.#api, this.#tools.imported),
    ];
    const others = [this.#filePart(), ...before.map((part) => part.element)];
    const learners = new LearnerPart(d, this.#api, {
      ...this.#tools,
      busy: (isBusy) => {
        this.#isBusy = isBusy;
        for (const each of others) each.inert = isBusy;
      },
    });
    this.#parts = [...before, learners];
    const closing = { className: 'close', ariaLabel: t('close') };
    const title = { id: 'lists-title', tabIndex: -1, autofocus: true, textContent: t('lists.title') };
    this.#dialog.replaceChildren(
      create(d, 'header', {}, create(d, 'h2', title), button(d, closing, () => this.#close())),
      create(d, 'div', { className: 'parts', tabIndex: 0, role: 'group', 'aria-labelledby': 'lists-title' },
        ...others, learners.element));
  }

  #filePart() {
    const download = (text, format) => create(this.#document, 'a', {
      className: 'field', href: this.#api.wordListAddress(format), download: '', textContent: text,
    });
    return listPart(this.#document, t('lists.files'), create(this.#document, 'p', { textContent: t('lists.filesText') }),
      create(this.#document, 'div', { className: 'buttons' },
        download(t('lists.csv'), 'csv'), download(t('lists.tsv'), 'tsv')));
  }
}
