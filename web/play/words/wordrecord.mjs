// SPDX-License-Identifier: GPL-3.0-or-later

/**
 * What the learner makes of one word that was met in one line: its status, its own meaning, whether it is kept. What is
 * asked of it is done one after the other, each by what the one before has left.
 */
export class WordRecord {
  #api;
  #filmWords;
  #sighting;
  #word = null; // as the service has it; null until it has answered
  #last;

  /** sighting: where it was met, as the service's Words/Save takes it, with its lemma. Asks the service at once. */
  constructor(api, filmWords, sighting) {
    this.#api = api;
    this.#filmWords = filmWords;
    this.#sighting = sighting;
    this.#last = api.word(sighting.lemma).then((word) => { this.#word = word; });
  }

  /** Settles when the service has told of the word; throws with a sentence. */
  get loaded() {
    return this.#last;
  }

  get status() {
    return this.#word?.status ?? null;
  }

  /** Whether it is kept with this very line. */
  get isSaved() {
    return this.status !== null && this.#word.sightings.some(({ line }) => line === this.#sighting.line);
  }

  /** What is learned is kept with its line; of what is known or of no interest the mark is enough. */
  grade(status) {
    const isDone = status === 'known' || status === 'ignored';
    return this.#change(() => (isDone || this.isSaved
      ? this.#api.changeWord(this.#sighting.lemma, { status })
      : this.#api.saveWord({ ...this.#sighting, status })));
  }

  /** Saves the word with its line; what is saved stays so, with its grade. */
  save() {
    return this.#change(() => (this.isSaved ? this.#word : this.#api.saveWord(this.#sighting)));
  }

  /** Saves the word with its line, or forgets it when it is saved. */
  toggleSaved() {
    return this.#change(() => (this.isSaved
      ? this.#api.forgetWord(this.#sighting.lemma)
      : this.#api.saveWord(this.#sighting)));
  }

  /** gloss: what it means in the learner's own words; empty takes that away. */
  teach(gloss) {
    return this.#change(() => this.#api.changeWord(this.#sighting.lemma, { gloss }));
  }

  #change(ask) {
    const done = this.#last.catch(() => {}).then(async () => {
      this.#word = await ask();
      this.#filmWords.marked(this.#word);
    });
    this.#last = done;
    return done;
  }
}
