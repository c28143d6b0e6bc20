// SPDX-License-Identifier: GPL-3.0-or-later

/**
 * A long list of which only the pages that are looked at are fetched, and in which words that are about to go are left
 * out. It knows no element.
 */
export class WordPages {
  #load;
  #changed;
  #pageSize;
  #pages = new Map(); // number -> words, or null while they are fetched
  #generation = 0;
  #hidden = new Map(); // lemma -> the renewal that no longer has it; Infinity while it is only about to go
  #gaps = []; // the places of hidden words, in order
  total = 0;

  /** load(offset, count): a promise of { total, words }; changed(error) when words or an error have come. */
  constructor(load, changed, pageSize = 100) {
    this.#load = load;
    this.#changed = changed;
    this.#pageSize = pageSize;
  }

  /** Fetches the first page and whatever stands from first to last; what was there shows until it is replaced. */
  async renew(first = 0, last = 0) {
    this.#generation += 1;
    const generation = this.#generation;
    const numbers = [...new Set([0, ...this.#numbers(this.#place(first), this.#place(last))])];
    try {
      const replies = await Promise.all(numbers.map((number) => this.#load(number * this.#pageSize, this.#pageSize)));
      if (generation !== this.#generation) return;
      for (const [lemma, until] of this.#hidden) {
        if (generation >= until) this.#hidden.delete(lemma);
      }
      this.#pages = new Map(numbers.map((number, i) => [number, replies[i].words]));
      this.total = replies[0].total;
      this.#findGaps();
      this.#changed(null);
    } catch (error) {
      if (generation === this.#generation) this.#changed(error);
    }
  }

  /** How many show. */
  get length() {
    return this.total - this.#gaps.length;
  }

  /** undefined while it is not here. */
  word(at) {
    const place = this.#place(at);
    return this.#pages.get(Math.floor(place / this.#pageSize))?.[place % this.#pageSize];
  }

  /** Sees to it that the words from first to last come. */
  need(first, last) {
    for (const number of this.#numbers(this.#place(first), this.#place(Math.min(last, this.length - 1)))) {
      if (!this.#pages.has(number)) this.#fetch(number);
    }
  }

  replace(word) {
    for (const words of this.#pages.values()) {
      const at = words?.findIndex((each) => each.lemma === word.lemma) ?? -1;
      if (at >= 0) words[at] = word;
    }
  }

  /** Leaves a word out, wherever it stands now and after a renewal. */
  hide(lemma) {
    this.#hidden.set(lemma, Infinity);
    this.#findGaps();
  }

  /** The hidden word stays. */
  show(lemma) {
    this.#hidden.delete(lemma);
    this.#findGaps();
  }

  /** The hidden word is gone: what is fetched from now on no longer has it. */
  forget(lemma) {
    this.#hidden.set(lemma, this.#generation + 1);
  }

  #findGaps() {
    this.#gaps = [];
    if (this.#hidden.size === 0) return;
    for (const [number, words] of this.#pages) {
      words?.forEach(({ lemma }, i) => { if (this.#hidden.has(lemma)) this.#gaps.push(number * this.#pageSize + i); });
    }
    this.#gaps.sort((a, b) => a - b);
  }

  #place(at) {
    return this.#gaps.reduce((place, gap) => (gap <= place ? place + 1 : place), at);
  }

  #numbers(first, last) {
    const from = Math.floor(Math.max(0, first) / this.#pageSize);
    const to = Math.floor(Math.max(0, last) / this.#pageSize);
    return Array.from({ length: to - from + 1 }, (_, i) => from + i);
  }

  async #fetch(number) {
    const generation = this.#generation;
    this.#pages.set(number, null);
    try {
      const { words, total } = await this.#load(number * this.#pageSize, this.#pageSize);
      if (generation !== this.#generation) return;
      this.#pages.set(number, words);
      this.total = total;
      this.#findGaps();
      this.#changed(null);
    } catch (error) {
      if (generation !== this.#generation) return;
      this.#pages.delete(number);
      this.#changed(error);
    }
  }
}

/** Which rows of a scrolled list are to be drawn: { first, last }, last below first when there are none. */
export function rowsInView({ scrollTop, height, rowHeight, length, spare = 6 }) {
  const first = Math.max(0, Math.floor(scrollTop / rowHeight) - spare);
  const last = Math.min(length - 1, Math.ceil((scrollTop + height) / rowHeight) + spare);
  return { first: Math.min(first, Math.max(0, last)), last };
}
