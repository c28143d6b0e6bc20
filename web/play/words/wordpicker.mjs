// SPDX-License-Identifier: GPL-3.0-or-later

// Which words of the upper line are picked: by a click or a drag, or by keys. A pick holds the film and the lines, and
// opens the card; the end of the pick lets both go on as before.

import { keepPresses } from '../panels/presses.mjs';

export class WordPicker {
  #film;
  #lines;
  #view;
  #words;
  #hover;
  #card;
  #say;
  #range = null; // { first, last }: places in the view's words
  #wasPlaying = false;
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

  /** To be called after changes of the film: a film that runs again has left the word behind. */
  update() {
    if (this.isOpen && this.#film.playing) this.#end(false);
  }

  /** Ends the pick; the film goes on if it did before. */
  close() {
    if (this.#range) this.#end(this.#wasPlaying);
  }

  /** Ends the pick and leaves the film as it is. */
  leave() {
    if (this.#range) this.#end(false);
  }

  #press(event) {
    const place = event.button === 0 ? placeOf(event.target) : null;
    if (place === null) return;
    event.preventDefault();
    this.#hold();
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
    const words = this.#wordsHere();
    if (!words) return;
    const from = this.#range ? (step > 0 ? this.#range.last : this.#range.first) : step > 0 ? -1 : words.length;
    for (let i = 1; i <= words.length; i += 1) {
      const place = (((from + step * i) % words.length) + words.length) % words.length;
      if (!fits(words[place])) continue;
      this.#hold();
      this.#mark({ first: place, last: place });
      this.#open(true);
      return;
    }
    this.#say('words.noneUnknown');
  }

  // The words of the line that shows, or of the last one that did.
  #wordsHere() {
    if (this.#range === null && this.#view.cues.length === 0) {
      const index = this.#lines.index('learned');
      const cue = index?.cues[index.lastStarted(this.#film.positionMs ?? 0)];
      if (!cue) {
        this.#say('words.noLine');
        return null;
      }
      this.#hold(cue);
    }
    return this.#view.text.words;
  }

  #stretch(step) {
    if (!this.#range) return;
    const { first, last } = this.#range;
    const end = Math.max(first, Math.min(last + step, this.#view.text.words.length - 1));
    if (end === last) return;
    this.#mark({ first, last: end });
    this.#open(true);
  }

  #hold(cue = null) {
    if (this.#range !== null) return; // as it is
    const isPlaying = this.#film.playing && !this.#film.ended;
    this.#wasPlaying = this.#hover.handOver() || isPlaying;
    if (isPlaying) this.#film.setPlaying(false);
    this.#lines.hold(cue ?? (this.#view.cues.length === 1 ? this.#view.cues[0] : null));
  }

  #mark(range) {
    this.#range = range;
    for (const element of this.#view.element.querySelectorAll('.word')) {
      const place = Number(element.dataset.word);
      element.classList.toggle('picked', place >= range.first && place <= range.last);
    }
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
      rectangle: this.#view.elementOf(first).getBoundingClientRect(),
      around: this.#view.element.parentElement.getBoundingClientRect(),
      byKey,
    });
  }

  #end(goesOn) {
    this.#range = null;
    this.#pressed = null;
    for (const element of this.#view.element.querySelectorAll('.picked')) element.classList.remove('picked');
    this.#card.close();
    this.#lines.release();
    if (goesOn) this.#film.setPlaying(true);
  }
}

function placeOf(target) {
  const place = target?.closest?.('[data-word]')?.dataset.word;
  return place === undefined ? null : Number(place);
}
