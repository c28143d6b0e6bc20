// SPDX-License-Identifier: GPL-3.0-or-later

import { create } from '../../shared/elements.mjs';
import { lineText } from './linetext.mjs';

/**
 * One track's place over the picture: draws the lines that it is given, and nothing when they are the same. Where the
 * words are alive, each is an element of its own.
 */
export class LinesView {
  #element;
  #shown = '[]';
  #cues = [];
  #text = lineText([]);
  #classOf = null;
  #isHeld = false;
  #picked = null; // { first, last }: places in the text's words

  constructor(element) {
    this.#element = element;
  }

  get element() {
    return this.#element;
  }

  /** Whether its words can be picked. */
  get isAlive() {
    return this.#classOf !== null && !this.#element.hidden;
  }

  /** The cues that are drawn. */
  get cues() {
    return this.#cues;
  }

  /** What is drawn, as lineText tells it. */
  get text() {
    return this.#text;
  }

  /** classOf(word): the class of a word's status; null: words are not alive. */
  setWords(classOf) {
    const isNew = (classOf === null) !== (this.#classOf === null);
    this.#classOf = classOf;
    if (isNew) this.#draw();
    else this.colour();
  }

  /** Marks the words from the first to the last of the range { first, last }; null: none. */
  pick(range) {
    this.#picked = range;
    this.colour();
  }

  /** Draws the words' classes anew. */
  colour() {
    for (const element of this.#element.querySelectorAll('.word')) {
      const name = this.#classNameOf(Number(element.dataset.word));
      if (element.className !== name) element.className = name;
    }
  }

  /** Keeps the place free even between two lines, so that the other track does not move. */
  reserve(languageTag) {
    this.#element.lang = languageTag;
    this.#element.hidden = false;
  }

  /** Gives the place up. */
  release() {
    this.#isHeld = false;
    this.show([]);
    this.#element.hidden = true;
  }

  show(cues) {
    if (this.#isHeld) return;
    const shown = JSON.stringify(cues.map(({ lines, italics }) => [lines, italics]));
    this.#cues = cues;
    if (shown === this.#shown) return;
    this.#shown = shown;
    this.#draw();
  }

  /** Keeps what is drawn, whatever the time, until let go. */
  hold(isHeld) {
    this.#isHeld = isHeld;
  }

  elementOf(word) {
    return this.#element.querySelector(`[data-word="${word}"]`);
  }

  #draw() {
    this.#text = lineText(this.#cues);
    this.#element.replaceChildren(...this.#text.lines.map((parts) => this.#line(parts)));
  }

  #line(parts) {
    const { ownerDocument } = this.#element;
    const drawn = (pieces) => pieces.map(({ text, isItalic }) => (isItalic ? create(ownerDocument, 'i', {}, text) : text));
    // Each line has its own direction: two speakers may have two languages.
    return create(ownerDocument, 'span', { className: 'line', dir: 'auto' },
      create(ownerDocument, 'span', { className: 'ink' },
        ...parts.flatMap(({ word, pieces }) => (word === null || !this.#classOf
          ? drawn(pieces)
          : [create(ownerDocument, 'span', { className: this.#classNameOf(word), 'data-word': word }, ...drawn(pieces))]))));
  }

  #classNameOf(place) {
    const isPicked = this.#picked && place >= this.#picked.first && place <= this.#picked.last;
    return ['word', this.#classOf(this.#text.words[place].text), isPicked ? 'picked' : ''].filter(Boolean).join(' ');
  }
}
