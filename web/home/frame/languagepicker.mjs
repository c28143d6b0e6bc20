// SPDX-License-Identifier: GPL-3.0-or-later

import { create } from '../../shared/elements.mjs';
import { spokenLanguage, t } from '../../shared/texts.mjs';
import { flagClass } from './flagclass.mjs';
import { Popover } from './popover.mjs';

/**
 * The language box of the home page and the list that it opens. The box's flag element names the language by its
 * classes, and the player reads it from there; so there is exactly one, and its classes are set as a whole.
 */
export class LanguagePicker {
  #document;
  #chosen;
  #box;
  #list;
  #popover;
  #languages = [];
  #selected = '';

  /** chosen(code) is called when the person picks another language, not by select(). */
  constructor(document, chosen) {
    this.#document = document;
    this.#chosen = chosen;
    this.#box = document.getElementById('selectedLanguage');
    this.#list = document.getElementById('language-list');
    this.#popover = new Popover(document, this.#box, document.getElementById('languages'));
    this.#list.addEventListener('change', (event) => this.#pick(event.target.value));
  }

  offer(languages) {
    this.#languages = languages;
    this.render();
  }

  render() {
    const names = new Intl.DisplayNames(spokenLanguage(), { type: 'language', fallback: 'none' });
    this.#list.replaceChildren(...this.#languages.map((language) => this.#option(language, names)));
    this.#check();
  }

  /** As its box does, for another button; which gets the focus back. */
  toggle(opener) {
    this.#popover.toggle(opener);
  }

  select(code) {
    const language = this.#languages.find((offered) => offered.code === code);
    this.#selected = code;
    this.#box.querySelector('.flag').className = flagClass(code);
    const name = this.#document.getElementById('selected-name');
    name.textContent = language?.nativeName ?? code;
    name.lang = language?.languageTag ?? '';
    this.#check();
  }

  #pick(code) {
    this.select(code);
    this.#chosen(code);
  }

  #check() {
    const option = this.#list.querySelector(`input[value="${this.#selected}"]`);
    if (!option) return;
    const hadFocus = this.#popover.isOpen && !this.#list.contains(this.#document.activeElement);
    option.checked = true;
    if (hadFocus) option.focus(); // the list was made anew under it
  }

  #option({ code, languageTag, nativeName, englishName, hasDictionary = true }, names) {
    const make = (...rest) => create(this.#document, ...rest);
    // Also the name in the interface's language, for a machine without the letters of the language's own.
    const name = names.of(languageTag) ?? englishName;
    const isSame = name.toLowerCase() === nativeName.toLowerCase();
    const note = hasDictionary ? name : t('home.noDictionary', { language: name });
    return make('label', {},
      make('input', { type: 'radio', name: 'language', value: code }),
      make('span', { className: flagClass(code) }),
      make('span', { className: 'names' },
        make('span', { textContent: nativeName, lang: languageTag }),
        ...(isSame && hasDictionary ? [] : [make('small', { textContent: note, title: note })])));
  }
}
