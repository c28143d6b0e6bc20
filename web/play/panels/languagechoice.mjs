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
  #shown = { subtitleId: 0, as: '' };
  #waiting = null; // { subtitleId, language, timer }: chosen, and not saved yet

  /** failed(text): what the learner asked for could not be done; empty: nothing is wrong any more. */
  constructor(document, subtitles, name, failed) {
    this.#document = document;
    this.#subtitles = subtitles;
    this.#name = name;
    this.#failed = failed;
    this.#asFound = create(document, 'option', { value: '' });
    this.#select = create(document, 'select', { className: 'language' }, this.#asFound);
    this.#select.addEventListener('change', () => this.#chosen());
    this.element = create(document, 'label', {},
      create(document, 'span', { 'data-text': 'subtitles.language' }), this.#select);
  }

  show() {
    const { subtitleId, language, cueCount } = this.#subtitles.line(this.#name);
    const as = `${language} ${cueCount}`; // what tells its language may be another now
    if (subtitleId !== this.#shown.subtitleId) {
      this.saveNow();
      this.#foundName = '';
      this.#select.replaceChildren(this.#asFound); // no others to choose from until they come
    }
    if (subtitleId !== this.#shown.subtitleId || as !== this.#shown.as) this.#load({ subtitleId, as });
    this.#nameFound();
  }

  closed() {
    this.saveNow();
    this.#shown = { subtitleId: 0, as: '' }; // the next time it is looked up again
  }

  /** Saves at once what is not saved yet. */
  saveNow() {
    if (this.#waiting) this.#save();
  }

  #nameFound() {
    this.#asFound.textContent = t('subtitles.asFound', { name: this.#foundName || t('subtitles.unknownLanguage') });
  }

  async #load(shown) {
    this.#shown = shown;
    try {
      const told = await this.#subtitles.api.subtitleLanguage(shown.subtitleId);
      if (shown === this.#shown) this.#offer(told);
    } catch (error) {
      console.warn(error.message); // what was found holds
    }
  }

  #offer({ language, found, languages }) {
    const option = ({ code, languageTag, nativeName }) =>
      create(this.#document, 'option', { value: code, lang: languageTag, textContent: nativeName });
    if (this.#select.options.length === 1) {
      const byName = new Intl.Collator('en').compare;
      const sorted = [...languages].sort((a, b) => byName(a.nativeName, b.nativeName));
      this.#select.append(...sorted.map(option));
    }
    this.#foundName = languages.find(({ code }) => code === found)?.nativeName ?? '';
    this.#nameFound();
    if (!this.#waiting) this.#select.value = language;
  }

  #chosen() {
    clearTimeout(this.#waiting?.timer);
    const timer = setTimeout(() => this.#save(), restMs);
    this.#waiting = { subtitleId: this.#shown.subtitleId, language: this.#select.value, timer };
  }

  async #save() {
    const { subtitleId, language, timer } = this.#waiting;
    clearTimeout(timer);
    this.#waiting = null;
    this.#failed('');
    try {
      await this.#subtitles.setLanguage(subtitleId, language);
    } catch (error) {
      this.#failed(error.message);
      if (this.#shown.subtitleId === subtitleId) this.#load(this.#shown); // shows what holds
    }
  }
}
