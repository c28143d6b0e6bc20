// SPDX-License-Identifier: GPL-3.0-or-later

import { languageFor, speak, translate } from '../../shared/texts.mjs';

/** The language of the buttons, as the learner has set it; see languageFor. */
export class InterfaceLanguage {
  #document;
  #api;
  #preferences;
  #changed;
  #learners = '';
  #wanted = '';

  /** changed(): what is not written in the page itself is to be said anew. */
  constructor(document, api, preferences, changed) {
    this.#document = document;
    this.#api = api;
    this.#preferences = preferences;
    this.#changed = changed;
    translate(document);
    preferences.onChange(() => this.#speak());
  }

  async load() {
    try {
      this.#learners = (await this.#api.settings()).nativeLanguage;
      await this.#speak();
    } catch (error) {
      console.warn(error.message); // what the desktop speaks does
    }
    this.#document.body.classList.add('spoken'); // words that show at once do not change under the eyes
  }

  async #speak() {
    const wanted = languageFor(this.#preferences.get('interface'), this.#learners, navigator.language);
    if (wanted === this.#wanted) return;
    this.#wanted = wanted;
    try {
      await speak(wanted);
    } catch (error) {
      this.#wanted = ''; // the next occasion tries again
      console.warn(error.message);
    }
    translate(this.#document);
    this.#changed();
  }
}
