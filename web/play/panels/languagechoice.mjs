// SPDX-License-Identifier: GPL-3.0-or-later

import { create } from '../../shared/elements.mjs';
import { t } from '../../shared/texts.mjs';

// By keyboard a list is gone through entry by entry, and each is a change: only the one that stays is meant.
const restMs = 600;

/** What language a line's subtitle is in, where its name or its text tells it wrongly, or not at all. */
export class LanguageChoice {
  element;
  #document;
  #subtitles;
  #name;
  #failed;
  #select;
  #asFound;
  #foundName = ''; // of the language; empty: not known
  #shownFor = 0;
  #resting = null;

  /** failed(text): what the learner asked for could not be done; empty: nothing is wrong any more. */
  constructor(document, subtitles, name, failed) {
    this.#document = document;
    this.#subtitles = subtitles;
    this.#name = name;
    this.#failed = failed;
    this.#asFound = create(document, 'option', { value: '' });
    this.#select = create(document, 'select', { className: 'language' }, this.#asFound);
    this.#select.addEventListener('change', () => {
      clearTimeout(this.#resting);
      this.#resting = setTimeout(() => this.#choose(), restMs);
    });
    this.element = create(document, 'label', {},
      create(document, 'span', { 'data-text': 'subtitles.language' }), this.#select);
  }

  show() {
    this.#asFound.textContent = t('subtitles.asFound', { name: this.#foundName || t('subtitles.unknownLanguage') });
    const { subtitleId } = this.#subtitles.line(this.#name);
    if (subtitleId !== this.#shownFor) this.#load(subtitleId);
  }

  async #load(subtitleId) {
    clearTimeout(this.#resting); // it was meant for another one
    this.#shownFor = subtitleId;
    this.#select.replaceChildren(this.#asFound); // no others to choose from until they come
    let told = null;
    try {
      told = await this.#subtitles.api.subtitleLanguage(subtitleId);
    } catch (error) {
      console.warn(error.message); // what was found holds
    }
    if (subtitleId !== this.#shownFor) return;
    if (told) this.#offer(told);
    else this.#shownFor = 0; // the next time, perhaps
  }

  #offer({ language, found, languages }) {
    const option = ({ code, languageTag, nativeName }) =>
      create(this.#document, 'option', { value: code, lang: languageTag, textContent: nativeName });
    const byName = new Intl.Collator('en').compare;
    const sorted = [...languages].sort((a, b) => byName(a.nativeName, b.nativeName));
    this.#foundName = languages.find(({ code }) => code === found)?.nativeName ?? '';
    this.#select.replaceChildren(this.#asFound, ...sorted.map(option));
    this.#select.value = language;
    this.show();
  }

  async #choose() {
    const subtitleId = this.#shownFor;
    this.#failed('');
    try {
      await this.#subtitles.setLanguage(subtitleId, this.#select.value);
    } catch (error) {
      this.#failed(error.message);
      this.#load(subtitleId); // shows what holds
    }
  }
}
