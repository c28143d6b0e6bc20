// SPDX-License-Identifier: GPL-3.0-or-later

import { flagClass } from './flagclass.mjs';

/**
 * The language box of the home page and the list that it opens. The box's flag element names the language by its
 * classes, and the player reads it from there; so there is exactly one, and its classes are set as a whole.
 */
export class LanguagePicker {
  #document;
  #chosen;
  #box;
  #panel;
  #list;
  #languages = [];

  /** chosen(code) is called when the person picks another language, not by select(). */
  constructor(document, chosen) {
    this.#document = document;
    this.#chosen = chosen;
    this.#box = document.getElementById('selectedLanguage');
    this.#panel = document.getElementById('languages');
    this.#list = document.getElementById('language-list');
    this.#box.addEventListener('click', () => this.#show(this.#panel.hidden));
    this.#list.addEventListener('change', (event) => this.#pick(event.target.value));
    this.#list.addEventListener('click', (event) => {
      // Arrow keys "click" as well, but at no place: only a real click or Enter has made the choice.
      if (event.detail > 0) this.#show(false);
    });
    this.#panel.addEventListener('keydown', (event) => {
      if (!['Enter', ' ', 'Escape'].includes(event.key)) return;
      event.preventDefault(); // the button that gets the focus would be pressed by the same key
      this.#show(false);
    });
    document.addEventListener('pointerdown', (event) => {
      if (!this.#panel.contains(event.target) && !this.#box.contains(event.target)) this.#show(false, false);
    });
  }

  offer(languages) {
    this.#languages = languages;
    this.#list.replaceChildren(...languages.map((language) => this.#option(language)));
  }

  select(code) {
    const language = this.#languages.find((offered) => offered.code === code);
    this.#box.querySelector('.flag').className = flagClass(code);
    const name = this.#document.getElementById('selected-name');
    name.textContent = language?.nativeName ?? code;
    name.lang = language?.languageTag ?? '';
    const option = this.#list.querySelector(`input[value="${code}"]`);
    if (option) option.checked = true;
  }

  #pick(code) {
    this.select(code);
    this.#chosen(code);
  }

  #show(open, moveFocus = true) {
    if (this.#panel.hidden === !open) return;
    this.#panel.hidden = !open;
    this.#box.setAttribute('aria-expanded', String(open));
    if (!moveFocus) return;
    if (open) this.#list.querySelector('input:checked')?.focus();
    else this.#box.focus();
  }

  #option({ code, languageTag, nativeName, englishName }) {
    const label = this.#document.createElement('label');
    const input = this.#document.createElement('input');
    input.type = 'radio';
    input.name = 'language';
    input.value = code;
    const flag = this.#document.createElement('span');
    flag.className = flagClass(code);
    const names = this.#document.createElement('span');
    names.className = 'names';
    const name = this.#document.createElement('span');
    name.textContent = nativeName;
    name.lang = languageTag;
    // Also for a machine without the letters of the language's own name.
    const english = this.#document.createElement('small');
    english.textContent = englishName;
    names.append(name, english);
    label.append(input, flag, names);
    return label;
  }
}
