// SPDX-License-Identifier: GPL-3.0-or-later

const cardsAtATime = 20;

/** The cards of one sitting: which one shows, which side of it, and how far the sitting is. It knows no element. */
export class ReviewSession {
  #api;
  #cards = [];
  #graded = []; // the cards of this sitting that were graded
  #undoableCount = 0;
  #isBusy = false;
  isTurned = false;
  isLoaded = false;
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

  /** What is due now. The card that shows stays, with its side, while it is among it. */
  async load() {
    const { cards, dueCount, nextDueAtMs } = await this.#api.review(cardsAtATime);
    // After an end, what comes later is another sitting.
    if (this.isLoaded && !this.#isBusy && !this.card && dueCount > 0) {
      this.#graded = [];
      this.#undoableCount = 0;
    }
    this.isLoaded = true;
    this.dueCount = dueCount;
    this.nextDueAtMs = nextDueAtMs;
    const shown = this.card && cards.find((each) => each.lemma === this.card.lemma);
    if (!shown) this.isTurned = false;
    this.#cards = shown ? [shown, ...cards.filter((each) => each !== shown)] : cards;
  }

  turn() {
    if (this.card) this.isTurned = !this.isTurned;
  }

  /** Throws with a sentence when the service refuses; the card stays then. */
  async grade(grade) {
    await this.#once(async () => {
      const card = this.card;
      if (!card || !this.isTurned) return;
      const { dueCount } = await this.#api.gradeWord(card.lemma, grade);
      this.#graded.push(card);
      this.#undoableCount += 1;
      this.#cards.shift();
      this.isTurned = false;
      this.dueCount = dueCount;
      // At the end also asks when the next one comes.
      if (this.#cards.length === 0) await this.load();
    });
  }

  /** The last card that was graded shows again. */
  async undo() {
    await this.#once(async () => {
      if (!this.canUndo) return;
      // What is refused (the word has changed elsewhere) will be again.
      const before = this.#undoableCount;
      this.#undoableCount = 0;
      const { dueCount } = await this.#api.undoGrade();
      this.#undoableCount = before - 1;
      const card = this.#graded.pop();
      this.#cards = [card, ...this.#cards.filter((each) => each.lemma !== card.lemma)];
      this.isTurned = false;
      this.dueCount = dueCount;
    });
  }

  // A second press while the first is under way would grade the next card.
  async #once(work) {
    if (this.#isBusy) return;
    this.#isBusy = true;
    try {
      await work();
    } finally {
      this.#isBusy = false;
    }
  }
}
