// SPDX-License-Identifier: GPL-3.0-or-later

// What the learner knows of this film's words. No element is touched here.

import { formOf, wordsOf } from '../lines/linetext.mjs';

/** Shown on a word, with a colour and a shape each; known words and names have none. */
export const wordClasses = {
  unknown: 'unknown', new: 'fresh', learning1: 'learning', learning2: 'learning', learning3: 'learning', learning4: 'learning',
};

export class FilmWords {
  #api;
  #videoId;
  #changed;
  #byForm = new Map(); // form -> { lemma, forms, count, rank, status, isKnown, isName }
  #byLemma = new Map();
  #subtitleId = null;
  #loads = 0;
  #reply = null;

  /** changed(): called after every change. */
  constructor(api, videoId, changed) {
    this.#api = api;
    this.#videoId = videoId;
    this.#changed = changed;
  }

  /** { runningWords, knownWords, knownPercent, words, learnFirst } as the service told; null before. */
  get reply() {
    return this.#reply;
  }

  async load() {
    this.#loads += 1;
    const load = this.#loads;
    const reply = await this.#api.filmWords(this.#videoId);
    if (load !== this.#loads) return;
    this.#reply = reply;
    this.#subtitleId = reply.subtitleId;
    this.#byForm.clear();
    this.#byLemma.clear();
    for (const word of reply.words) this.#add(word);
    this.#changed();
  }

  /** Loads; without an answer words answer all the same, only without colours. */
  loadQuietly() {
    this.load().catch((error) => console.warn(error.message));
  }

  /** The subtitle whose words these are; null while the film has no English one. */
  get subtitleId() {
    return this.#subtitleId;
  }

  /** The film's word with this dictionary form; undefined when the film does not have it. */
  word(lemma) {
    return this.#byLemma.get(lemma);
  }

  /** The word of a form as a line has it; undefined when it is none of the film's. */
  wordOfForm(form) {
    return this.#byForm.get(formOf(form));
  }

  /** The class that shows a word's status; empty for what is known. */
  classOf(form) {
    const word = this.#byForm.get(formOf(form));
    if (!word) return '';
    return wordClasses[word.status ?? (word.isKnown ? 'known' : 'unknown')] ?? '';
  }

  /** Whether a word wants learning: not known, no name. */
  isUnknown(form) {
    const word = this.#byForm.get(formOf(form));
    return Boolean(word) && !word.isKnown;
  }

  /** Whether a line has a word that wants learning. */
  isHard(cue) {
    return cue.lines.some((line) => wordsOf(line).some((word) => this.isUnknown(word.text)));
  }

  /** The service's reply about a word that was marked, saved or forgotten. */
  marked({ lemma, status }) {
    const word = this.#byLemma.get(lemma);
    if (!word) return;
    word.status = status;
    if (status === null) {
      this.loadQuietly(); // whether it counts as known is the service's to say
      return;
    }
    word.isKnown = status === 'known' || status === 'ignored';
    this.#changed();
  }

  #add(word) {
    this.#byLemma.set(word.lemma, word);
    // The commoner word comes first, and keeps a form that two words share.
    for (const form of word.forms) if (!this.#byForm.has(form)) this.#byForm.set(form, word);
  }
}
