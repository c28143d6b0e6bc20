// SPDX-License-Identifier: GPL-3.0-or-later

import { foldText } from './search.mjs';

/** Which of many texts have what is looked for, and the way from one to the next. */
export class LineSearch {
  wanted = ''; // folded
  hits = []; // places, in order
  #texts = [];
  #folded = null; // made when something is looked for first

  setTexts(texts) {
    this.#texts = texts;
    this.#folded = null;
    this.#search();
  }

  setWanted(text) {
    this.wanted = foldText(text.trim());
    this.#search();
  }

  /** The place of the next hit (step 1) or the one before (-1) as seen from a place, round the end; -1: none. */
  next(step, from) {
    if (step > 0) return this.hits.find((place) => place > from) ?? this.hits[0] ?? -1;
    const before = this.hits.filter((place) => place < from);
    return before.at(-1) ?? this.hits.at(-1) ?? -1;
  }

  #search() {
    this.hits = [];
    if (this.wanted === '') return;
    this.#folded ??= this.#texts.map(foldText);
    this.#folded.forEach((text, place) => {
      if (text.includes(this.wanted)) this.hits.push(place);
    });
  }
}
