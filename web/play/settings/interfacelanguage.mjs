// SPDX-License-Identifier: GPL-3.0-or-later

import { speak, translate } from '../../shared/texts.mjs';

/** The language of the buttons: the learner's own, or the one that was chosen instead. */
export class InterfaceLanguage {
  #document;
  #api;
  #preferences;
  #changed;
  #learners = '';
  #chosen = '';

  /** changed(): what is not written in the page itself is to be said anew. */
  constructor(document, api, preferences, changed) {
    this.#document = document;
    this.#api = api;
    this.#preferences = preferences;
    this.#changed = changed;
    translate(document);
    preferences.onChange(() => {
      if (preferences.get('interface').language !== this.#chosen) this.#speak();
    });
  }

  async load() {
    try {
      this.#learners = (await this.#api.settings()).nativeLanguage;
      await this.#speak();
    } catch (error) {
      console.warn(error.message); // English does
    }
  }

  async #speak() {
    this.#chosen = this.#preferences.get('interface').language;
    await speak(this.#chosen || this.#learners);
    translate(this.#document);
    this.#changed();
  }
}
