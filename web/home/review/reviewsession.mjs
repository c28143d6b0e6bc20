// SPDX-License-Identifier: GPL-3.0-or-later

const cardsAtATime = 20;

/** The cards of one sitting: which one shows, which side of it, and how far the sitting is. It knows no element. */
export class ReviewSession {
  #api;
  #cards = [];
  #graded = []; // the cards of this sitting that were graded
  #undoableCount = 0;
  #step = null; // promise of the grade or undo that is under way
  #stepCount = 0;
  #loadCount = 0;
  isTurned = false;
  /** Whether it is known what is due. */
  isLoaded = false;
  /** Why there is no card, when nobody knows whether one is due; else empty. */
  problem = '';
  dueCount = 0;
  nextDueAtMs = null;

  constructor(api) {
    this.#api = api;
  }

  /** null: there is none that is due. */
  get card() {
    return this.#cards[0] ?? null;
  }

  get gradedCount() {
    return this.#graded.length;
  }

  get canUndo() {
    return this.#undoableCount > 0;
  }

  /** Of this sitting: graded and still due. */
  get total() {
    return this.#graded.length + this.dueCount;
  }

  /** What is due now. The card that shows stays, with its side, while it is among it. Throws with a sentence. */
  async load() {
    this.#loadCount += 1;
    const mine = this.#loadCount;
    for (;;) {
      await this.#step?.catch(() => {});
      const steps = this.#stepCount;
      const reply = await this.#ask();
      if (mine !== this.#loadCount) return;
      if (steps !== this.#stepCount) continue; // it may still have a card that was graded meanwhile
      this.#take(reply);
      return;
    }
  }

  async #ask() {
    try {
      return await this.#api.review(cardsAtATime);
    } catch (error) {
      if (!this.card) this.problem = error.message;
      throw error;
    }
  }

  #take({ cards, dueCount, nextDueAtMs }) {
    // After an end, what comes later is another sitting.
    if (this.isLoaded && !this.#step && !this.card && dueCount > 0) {
      this.#graded = [];
      this.#undoableCount = 0;
    }
    this.isLoaded = true;
    this.problem = '';
    this.dueCount = dueCount;
    this.nextDueAtMs = nextDueAtMs;
    const shown = this.card && cards.find((each) => each.lemma === this.card.lemma);
    if (!shown) this.isTurned = false;
    this.#cards = shown ? [shown, ...cards.filter((each) => each !== shown)] : cards;
  }

  turn() {
    if (this.card) this.isTurned = !this.isTurned;
  }

  /** Settles with whether the card was graded. Throws with a sentence when the service refuses; the card stays then. */
  grade(grade) {
    return this.#once(async () => {
      const card = this.card;
      if (!card || !this.isTurned) return false;
      const { dueCount } = await this.#api.gradeWord(card.lemma, grade);
      this.#graded.push(card);
      this.#undoableCount += 1;
      this.#cards.shift();
      this.isTurned = false;
      this.dueCount = dueCount;
      if (this.#cards.length === 0) await this.#loadNext();
      return true;
    });
  }

  /** The last card that was graded shows again; settles with whether it does. */
  undo() {
    return this.#once(async () => {
      if (!this.canUndo) return false;
      // What is refused (the word has changed elsewhere) will be again.
      const before = this.#undoableCount;
      this.#undoableCount = 0;
      const { dueCount } = await this.#api.undoGrade();
      this.#undoableCount = before - 1;
      const card = this.#graded.pop();
      this.#cards = [card, ...this.#cards.filter((each) => each.lemma !== card.lemma)];
      this.isTurned = false;
      this.problem = '';
      this.dueCount = dueCount;
      return true;
    });
  }

  // The next cards, or when the next one comes. A failure is none of the grade's.
  async #loadNext() {
    this.isLoaded = false;
    await this.#ask().then((reply) => this.#take(reply), () => {});
  }

  // A second press while the first is under way would grade the next card.
  async #once(work) {
    if (this.#step) return false;
    this.#stepCount += 1;
    this.#step = work();
    try {
      return await this.#step;
    } finally {
      this.#step = null;
    }
  }
}
