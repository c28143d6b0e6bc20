// SPDX-License-Identifier: GPL-3.0-or-later

// What a learner has set in the pages (looks, keys, habits), kept by the service. Each name stands for an object whose
// fields lie over the defaults, so that a new field has a value for everybody.

const saveAfterMs = 400;

/** Of all pages: the language of the buttons, two letters, empty: none of its own; whether a learner's was chosen. */
export const interfaceDefaults = { language: '', follows: false };

const retryAfterMs = 5000;

export class Preferences {
  #api;
  #defaults;
  #values = new Map();
  #unsaved = new Map(); // name -> how often it was changed: what the service has not acknowledged
  #changes = 0;
  #timer = null;
  #listeners = [];

  /** defaults: an object of objects. */
  constructor(api, defaults) {
    this.#api = api;
    this.#defaults = defaults;
  }

  /** Throws with a sentence when the service does not answer; what was known holds then. */
  async load() {
    const values = await this.#api.pageSettings();
    // What was changed here, and is not acknowledged yet, is newer.
    const own = [...this.#values].filter(([name]) => this.#unsaved.has(name));
    this.#values = new Map([...Object.entries(values), ...own]);
    this.#tell();
  }

  /** The fields of an object; of what was kept only those that the defaults know, and of their kind. */
  get(name) {
    const defaults = this.#defaults[name];
    const value = this.#values.get(name);
    if (typeof value !== 'object' || value === null || Array.isArray(value)) return { ...defaults };
    const isFree = Object.keys(defaults).length === 0;
    const fits = ([field, kept]) => isFree || (Object.hasOwn(defaults, field) && kindOf(kept) === kindOf(defaults[field]));
    return { ...defaults, ...Object.fromEntries(Object.entries(value).filter(fits)) };
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

  /** The page is about to go. Settles when what was changed is kept, or could not be. */
  saveNow() {
    clearTimeout(this.#timer);
    return this.#save();
  }

  #set(name, value) {
    this.#changes += 1;
    this.#values.set(name, value);
    this.#unsaved.set(name, this.#changes);
    this.#saveIn(saveAfterMs);
    this.#tell();
  }

  #saveIn(pauseMs) {
    clearTimeout(this.#timer);
    this.#timer = setTimeout(() => this.#save(), pauseMs);
  }

  async #save() {
    if (this.#unsaved.size === 0) return;
    const sent = [...this.#unsaved];
    try {
      await this.#api.changePageSettings(Object.fromEntries(sent.map(([name]) => [name, this.#values.get(name) ?? null])));
    } catch (error) {
      console.warn(error.message);
      this.#saveIn(retryAfterMs);
      return;
    }
    for (const [name, change] of sent) {
      if (this.#unsaved.get(name) === change) this.#unsaved.delete(name);
    }
  }

  // One part that stumbles must not keep the news from the others.
  #tell() {
    for (const listener of this.#listeners) {
      try {
        listener();
      } catch (error) {
        console.error(error);
      }
    }
  }
}

const kindOf = (value) => (Array.isArray(value) ? 'array' : typeof value);
