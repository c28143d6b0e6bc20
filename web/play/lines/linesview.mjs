// SPDX-License-Identifier: GPL-3.0-or-later

import { create } from '../../shared/elements.mjs';
import { runsOf } from './runs.mjs';

/** One track's place over the picture: draws the lines that it is given, and nothing when they are the same. */
export class LinesView {
  #element;
  #shown = '[]';

  constructor(element) {
    this.#element = element;
  }

  /** Keeps the place free even between two lines, so that the other track does not move. */
  reserve(languageTag) {
    this.#element.lang = languageTag;
    this.#element.hidden = false;
  }

  /** Gives the place up. */
  release() {
    this.show([]);
    this.#element.hidden = true;
  }

  show(cues) {
    const lines = cues.flatMap(runsOf);
    const shown = JSON.stringify(lines);
    if (shown === this.#shown) return;
    this.#shown = shown;
    this.#element.replaceChildren(...lines.map((runs) => this.#line(runs)));
  }

  #line(runs) {
    const { ownerDocument } = this.#element;
    // Each line has its own direction: two speakers may have two languages.
    return create(ownerDocument, 'span', { className: 'line', dir: 'auto' },
      ...runs.map(({ text, isItalic }) => (isItalic ? create(ownerDocument, 'i', {}, text) : text)));
  }
}
