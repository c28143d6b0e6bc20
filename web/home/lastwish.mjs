// SPDX-License-Identifier: GPL-3.0-or-later

/** Carries out wishes in their order, one at a time; of those that come meanwhile only the last one counts. */
export class LastWish {
  #carryOut;
  #before = Promise.resolve();
  #count = 0;
  #waiting = 0;

  /** carryOut(value): a promise. */
  constructor(carryOut) {
    this.#carryOut = carryOut;
  }

  get isUnderWay() {
    return this.#waiting > 0;
  }

  /** Settles with whether this one was carried out and none has come after it; throws only then, too. */
  want(value) {
    this.#count += 1;
    this.#waiting += 1;
    const mine = this.#count;
    const before = this.#before.catch(() => {});
    const taken = before.then(() => this.#take(value, () => mine === this.#count));
    this.#before = taken.finally(() => { this.#waiting -= 1; });
    return this.#before;
  }

  async #take(value, isLast) {
    if (!isLast()) return false;
    try {
      await this.#carryOut(value);
    } catch (error) {
      if (isLast()) throw error;
    }
    return isLast();
  }
}
