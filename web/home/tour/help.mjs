// SPDX-License-Identifier: GPL-3.0-or-later

import { button, create } from '../../shared/elements.mjs';
import { keyName } from '../../shared/keyname.mjs';
import { t } from '../../shared/texts.mjs';

// Groups of keys, each with its text.
const keyGroups = [
  ['help.everywhere', [
    [['1', '2', '3', '4'], 'help.toView'], [['/'], 'help.toSearch'], [['?', 'f1'], 'help.thisSheet'],
    [['Ctrl+o'], 'help.openFilm'],
  ]],
  ['help.inReview', [
    [['space'], 'help.turn'], [['1', '2', '3', '4'], 'help.grade'], [['s'], 'help.hearLine'], [['w'], 'help.hearWord'],
    [['u'], 'help.undo'], [['Alt+1', 'Alt+4'], 'help.toViewFromReview'],
  ]],
  ['help.inLists', [[['arrowup', 'arrowdown'], 'help.rows'], [['pageup', 'pagedown'], 'help.pages']]],
];

/** The sheet with the keys of this page, and the ways to the tour and to what is told of accounts. */
export class Help {
  #document;
  #dialog;
  #tour;

  /** tour() begins it. */
  constructor(document, tour) {
    this.#document = document;
    this.#tour = tour;
    this.#dialog = document.getElementById('help');
    document.getElementById('help-button').addEventListener('click', () => this.toggle());
    this.#dialog.addEventListener('click', (event) => {
      if (event.target === this.#dialog) this.#dialog.close(); // beside it
    });
  }

  toggle() {
    if (this.#dialog.open) {
      this.#dialog.close();
      return;
    }
    this.#build();
    this.#dialog.showModal();
  }

  #build() {
    const make = (...rest) => create(this.#document, ...rest);
    const press = (className, pressed, ...children) => button(this.#document, { className }, pressed, ...children);
    const closing = { className: 'close', ariaLabel: t('close') };
    const close = button(this.#document, closing, () => this.#dialog.close());
    const key = (name) => make('kbd', { textContent: keyName(name) });
    const row = ([names, text]) => make('div', {},
      make('dt', { dir: 'ltr' }, ...names.map(key)), make('dd', { textContent: t(text) }));
    const group = ([title, rows]) => make('section', {},
      make('h3', { textContent: t(title) }), make('dl', {}, ...rows.map(row)));
    const title = make('h2', { id: 'help-title', tabIndex: -1, autofocus: true, textContent: t('help.title') });
    this.#dialog.replaceChildren(
      make('header', {}, title, close),
      make('div', { className: 'parts', tabIndex: 0, role: 'group', 'aria-labelledby': 'help-title' },
        ...keyGroups.map(group),
        make('p', { className: 'quiet', textContent: t('help.inFilm') }),
        make('div', { className: 'buttons' },
          press('field', () => { this.#dialog.close(); this.#tour(); }, t('help.tour')),
          // The player opens it in the user's own browser.
          make('a', { className: 'field', href: 'PlayerRegister', textContent: t('help.account') }))));
  }
}
