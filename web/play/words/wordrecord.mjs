// SPDX-License-Identifier: GPL-3.0-or-later

/** What the learner makes of one word that was met in one line: its status, its own meaning, whether it is kept. */
export class WordRecord {
  #api;
  #filmWords;
  #sighting;
  #word = null; // as the service has it; null until it has answered

  /** sighting: where it was met, as the service's Words/Save takes it, with its lemma. */
  constructor(api, filmWords, sighting) {
    this.#api = api;
    this.#filmWords = filmWords;
    this.#sighting = sighting;
  }

  get lemma() {
    return this.#sighting.lemma;
  }

  get status() {
    return this.#word?.status ?? null;
  }

  /** Whether it is kept with this very line. */
  get isSaved() {
    return this.status !== null && this.#word.sightings.some(({ line }) => line === this.#sighting.line);
  }

  async load() {
    this.#word = await this.#api.word(this.lemma);
  }

  /** What is learned is kept with its line; of what is known or of no interest the mark is enough. */
  async grade(status) {
    const isDone = status === 'known' || status === 'ignored';
    await this.#change(isDone || this.isSaved
      ? this.#api.changeWord(this.lemma, { status })
      : this.#api.saveWord({ ...this.#sighting, status }));
  }

  /** Saves the word with its line, or forgets it when it is saved. */
  async toggleSaved() {
    await this.#change(this.isSaved ? this.#api.forgetWord(this.lemma) : this.#api.saveWord(this.#sighting));
  }

  /** gloss: what it means in the learner's own words; empty takes that away. */
  async teach(gloss) {
    await this.#change(this.#api.changeWord(this.lemma, { gloss }));
  }

  async #change(answer) {
    this.#word = await answer;
    this.#filmWords.marked(this.#word);
  }
}
