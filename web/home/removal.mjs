// SPDX-License-Identifier: GPL-3.0-or-later

/**
 * Takes things away only after a while in which the person can think better of it: nothing needs to be made anew then.
 * One removal waits at a time; the next one carries the earlier out.
 */
export class PendingRemoval {
  #waiting = null;
  #afterMs;

  constructor(afterMs = 7000) {
    this.#afterMs = afterMs;
  }

  /** removal: { key, carryOut(), takenBack(), done() }; key is what has() knows it by, done is called in any case. */
  begin(removal) {
    this.carryOut();
    this.#waiting = { ...removal };
    this.hold(false);
  }

  /** While it is held the time stands still; it begins anew then. */
  hold(isHeld) {
    const removal = this.#waiting;
    if (!removal) return;
    clearTimeout(removal.timer);
    removal.timer = isHeld ? null : setTimeout(() => this.carryOut(), this.#afterMs);
  }

  has(key) {
    return this.#waiting?.key === key;
  }

  get waits() {
    return this.#waiting !== null;
  }

  /** Settles when what waited is carried out. */
  async carryOut() {
    const removal = this.#end();
    await removal?.carryOut();
  }

  takeBack() {
    this.#end()?.takenBack();
  }

  #end() {
    const removal = this.#waiting;
    if (!removal) return null;
    clearTimeout(removal.timer);
    this.#waiting = null;
    removal.done?.();
    return removal;
  }
}
