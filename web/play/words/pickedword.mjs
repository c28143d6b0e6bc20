// SPDX-License-Identifier: GPL-3.0-or-later

import { likeliest } from './lookups.mjs';
import { WordRecord } from './wordrecord.mjs';

/**
 * A word or phrase that was picked: what the service tells of it, which of its headwords is meant, and what the learner
 * makes of it. What is asked of it before the service has told is done then, even if the card is about another word by
 * that time. No element is touched here.
 */
export class PickedWord {
  #api;
  #filmWords;
  #sightingOf;
  #answered = Promise.resolve();
  #reply = null;
  #headword = null;
  #record = null;

  /** sightingOf(lemma): where it was met, as WordRecord takes it. */
  constructor(api, filmWords, sightingOf) {
    this.#api = api;
    this.#filmWords = filmWords;
    this.#sightingOf = sightingOf;
  }

  /** What the last look-up told, as lookUpPicked gives it; null before. */
  get reply() {
    return this.#reply;
  }

  /** The headword that is meant, one of the reply's; null where nobody has it. */
  get headword() {
    return this.#headword;
  }

  /** Its dictionary form; empty before the service has told. */
  get lemma() {
    return this.#headword?.word ?? this.#reply?.lemmas?.[0] ?? '';
  }

  /** A WordRecord; null before the service has told of a word. */
  get record() {
    return this.#record;
  }

  /** Asks the service by ask(), and means what was asked for then, or the likeliest headword; throws with a sentence. */
  lookUp(ask) {
    const told = Promise.resolve(ask()).then((reply) => {
      this.#reply = reply;
      this.choose(reply.meant ?? likeliest(reply.headwords));
    });
    told.catch(() => {}); // whoever waits for it hears of it
    this.#answered = told;
    return told;
  }

  /** headword: one of the reply's; null where it has none. */
  choose(headword) {
    this.#headword = headword;
    this.#record = this.lemma ? new WordRecord(this.#api, this.#filmWords, this.#sightingOf(this.lemma)) : null;
    this.#record?.loaded.catch((error) => console.warn(error.message)); // it can be marked all the same
  }

  /** As WordRecord does it; resolves with whether that is the headword which is still meant; throws with a sentence. */
  grade(status) {
    return this.#change((record) => record.grade(status));
  }

  /** As grade(); what is saved stays so. */
  save() {
    return this.#change((record) => record.save());
  }

  /** As grade(). */
  toggleSaved() {
    return this.#change((record) => record.toggleSaved());
  }

  /** As grade(). */
  teach(gloss) {
    return this.#change(async (record, headword) => {
      await record.teach(gloss);
      if (headword) headword.gloss = gloss;
    });
  }

  async #change(ask) {
    await this.#answered;
    const [record, headword] = [this.#record, this.#headword];
    if (!record) return false;
    await ask(record, headword);
    if (headword) headword.status = record.status;
    return record === this.#record;
  }
}
