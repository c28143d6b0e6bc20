// SPDX-License-Identifier: GPL-3.0-or-later

// Which words of the upper line are picked: by a click or a drag, or by keys. A pick holds the film and the lines, and
// opens the card; the end of the pick lets both go on as before.

import { Hold } from '../film/hold.mjs';
import { lineText } from '../lines/linetext.mjs';
import { keepPresses } from '../panels/presses.mjs';

export class WordPicker {
  #film;
  #lines;
  #view;
  #words;
  #hover;
  #card;
  #say;
  #hold;
  #range = null; // { first, last }: places in the view's words
  #seeks = 0; // of the film, when the pick began
  #pressed = null; // the word on which a press began

  /** lines: ShownLines; words: FilmWords; hover: HoverPause; card: a WordCard; say(key): a short word. */
  constructor(film, { lines, words, hover, card, say }) {
    this.#film = film;
    this.#lines = lines;
    this.#view = lines.view('learned');
    this.#words = words;
    this.#hover = hover;
    this.#card = card;
    this.#say = say;
    this.#hold = new Hold(film);
    const { element } = this.#view;
    keepPresses(element);
    element.addEventListener('pointerdown', (event) => this.#press(event));
    element.ownerDocument.addEventListener('pointermove', (event) => this.#drag(event));
    element.ownerDocument.addEventListener('pointerup', () => this.#release());
    element.ownerDocument.addEventListener('pointercancel', () => this.#release());
  }

  get isOpen() {
    return this.#range !== null && this.#pressed === null;
  }

  actions = {
    nextUnknown: () => this.#walk(1, (word) => this.#words.isUnknown(word.text)),
    previousUnknown: () => this.#walk(-1, (word) => this.#words.isUnknown(word.text)),
    nextWord: () => this.#walk(1, () => true),
    previousWord: () => this.#walk(-1, () => true),
    longerPhrase: () => this.#stretch(1),
    shorterPhrase: () => this.#stretch(-1),
    closeCard: () => this.close(),
  };

  /** To be called after changes of the film: one that runs again or is elsewhere has left the word behind. */
  update() {
    this.#hold.update();
    if (!this.isOpen) return;
    if (this.#film.playing || this.#film.seeks !== this.#seeks) this.close();
  }

  /** Ends the pick; the film goes on if it did before. */
  close() {
    this.#end();
    this.#hold.letGo();
  }

  /** Ends the pick and leaves the film as it is. */
  leave() {
    this.#end();
    this.#hold.drop();
  }

  #press(event) {
    const place = event.button === 0 ? placeOf(event.target) : null;
    if (place === null) return;
    event.preventDefault();
    this.#begin();
    this.#pressed = place;
    this.#mark({ first: place, last: place });
  }

  #drag(event) {
    if (this.#pressed === null) return;
    const place = placeOf(this.#view.element.ownerDocument.elementFromPoint(event.clientX, event.clientY));
    if (place === null) return;
    this.#mark({ first: Math.min(place, this.#pressed), last: Math.max(place, this.#pressed) });
  }

  #release() {
    if (this.#pressed === null) return;
    this.#pressed = null;
    this.#open(false);
  }

  #walk(step, fits) {
    const cue = this.#range === null && this.#view.cues.length === 0 ? this.#lastCue() : null;
    const words = cue ? lineText([cue]).words : this.#view.text.words;
    if (!this.#view.isAlive || words.length === 0) {
      this.#say('words.noLine');
      return;
    }
    let place = this.#placeAfter(words, step, fits);
    if (place === null) {
      this.#say('words.noneUnknown');
      if (this.#range) return;
      place = 0; // any word can be asked about
    }
    this.#begin(cue);
    this.#mark({ first: place, last: place });
    this.#open(true);
  }

  // From the picked word on, round the ends of the line; null when none fits.
  #placeAfter(words, step, fits) {
    const outside = step > 0 ? -1 : words.length;
    const from = this.#range ? (step > 0 ? this.#range.last : this.#range.first) : outside;
    for (let i = 1; i <= words.length; i += 1) {
      const place = (((from + step * i) % words.length) + words.length) % words.length;
      if (fits(words[place])) return place;
    }
    return null;
  }

  #lastCue() {
    const index = this.#lines.index('learned');
    return index?.cues[index.lastStarted(this.#film.positionMs ?? 0)] ?? null;
  }

  #stretch(step) {
    if (!this.#range) return;
    const { first, last } = this.#range;
    const end = Math.max(first, Math.min(last + step, this.#view.text.words.length - 1));
    if (end === last) return;
    this.#mark({ first, last: end });
    this.#open(true);
  }

  // cue: to be shown, where none is.
  #begin(cue = null) {
    if (this.#range !== null) return; // as it is
    const wouldGoOn = this.#hover.handOver() || (this.#film.playing && !this.#film.ended);
    this.#hold.take(wouldGoOn);
    this.#seeks = this.#film.seeks;
    this.#lines.hold(cue);
  }

  #mark(range) {
    this.#range = range;
    this.#view.pick(range);
  }

  /** Marks what the card has found around the picked words: a phrase that they are of. */
  markAlso(start, end) {
    if (!this.isOpen) return;
    const { words } = this.#view.text;
    const among = [...words.keys()].filter((i) => words[i].start < end && words[i].end > start);
    if (among.length > 0) this.#view.pick({ first: among[0], last: among.at(-1) });
  }

  #open(byKey) {
    const { text, words } = this.#view.text;
    const { first, last } = this.#range;
    this.#card.open({
      cue: this.#view.cues[0],
      text,
      start: words[first].start,
      end: words[last].end,
      isPhrase: last > first,
      rectangles: () => ({
        word: this.#view.elementOf(first)?.getBoundingClientRect(),
        lines: this.#view.element.parentElement.getBoundingClientRect(),
      }),
      byKey,
    });
  }

  #end() {
    if (!this.#range) return;
    this.#range = null;
    this.#pressed = null;
    this.#view.pick(null);
    this.#card.close();
    this.#lines.release();
  }
}

function placeOf(target) {
  const place = target?.closest?.('[data-word]')?.dataset.word;
  return place === undefined ? null : Number(place);
}
