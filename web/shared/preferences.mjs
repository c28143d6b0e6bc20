// SPDX-License-Identifier: GPL-3.0-or-later

// What a learner has set in the pages (looks, keys, habits), kept by the service. Each name stands for an object whose
// fields lie over the defaults, so that a new field has a value for everybody.

const saveAfterMs = 400;

/** Of all pages: the language of the buttons, two letters, empty: none of its own; whether a learner's was chosen. */
export const interfaceDefaults = { language: '', follows: false };

export class Preferences {
  #api;
  #defaults;
  #values = {};
  #unsaved = new Set();
  #timer = null;
  #listeners = [];

  /** defaults: an object of objects. */
  constructor(api, defaults) {
    this.#api = api;
    this.#defaults = defaults;
  }

  /** Throws with a sentence when the service does not answer; the defaults hold then. */
  async load() {
    const values = await this.#api.pageSettings();
    // What was changed before the answer came is newer.
    for (const name of Object.keys(values)) {
      if (!this.#unsaved.has(name)) this.#values[name] = values[name];
    }
    this.#tell();
  }

  get(name) {
    const value = this.#values[name];
    const isObject = typeof value === 'object' && value !== null && !Array.isArray(value);
    return { ...this.#defaults[name], ...(isObject ? value : {}) };
  }

  /** Changes fields of one object, and keeps it when it has rested. */
  change(name, fields) {
    this.#set(name, { ...this.get(name), ...fields });
  }

  /** Back to the defaults. */
  reset(name) {
    this.#set(name, null);
  }

  /** listener() is called after every change. */
  onChange(listener) {
    this.#listeners.push(listener);
  }

  /** The page is about to go. */
  saveNow() {
    clearTimeout(this.#timer);
    this.#save();
  }

  #set(name, value) {
    this.#values[name] = value;
    this.#unsaved.add(name);
    clearTimeout(this.#timer);
    this.#timer = setTimeout(() => this.#save(), saveAfterMs);
    this.#tell();
  }

  async #save() {
    if (this.#unsaved.size === 0) return;
    const names = [...this.#unsaved];
    this.#unsaved.clear();
    try {
      await this.#api.changePageSettings(Object.fromEntries(names.map((name) => [name, this.#values[name] ?? null])));
    } catch (error) {
      for (const name of names) this.#unsaved.add(name);
      console.warn(error.message);
    }
  }

  #tell() {
    for (const listener of this.#listeners) listener();
  }
}
