// SPDX-License-Identifier: GPL-3.0-or-later

/** Puts preferences back to how they were at first, which can be taken back until one of them is set otherwise. */
export class LooksReset {
  #preferences;
  #names;
  #before = null;
  #after = '';

  /** names: of the preferences. */
  constructor(preferences, names) {
    this.#preferences = preferences;
    this.#names = names;
  }

  get canUndo() {
    if (this.#before && JSON.stringify(this.#now()) !== this.#after) this.forget();
    return this.#before !== null;
  }

  reset() {
    const before = this.#now();
    for (const name of this.#names) this.#preferences.reset(name);
    const after = JSON.stringify(this.#now());
    if (JSON.stringify(before) === after) return; // pressed again: what was taken away can still be brought back
    this.#before = before;
    this.#after = after;
  }

  undo() {
    if (!this.canUndo) return;
    const before = this.#before;
    this.forget();
    this.#names.forEach((name, i) => this.#preferences.change(name, before[i]));
  }

  forget() {
    this.#before = null;
  }

  #now() {
    return this.#names.map((name) => this.#preferences.get(name));
  }
}
