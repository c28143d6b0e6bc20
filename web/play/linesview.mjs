// SPDX-License-Identifier: GPL-3.0-or-later

/** One track's place over the picture: draws the lines that it is given, and nothing when they are the same. */
export class LinesView {
  #element;
  #shown = '';

  constructor(element) {
    this.#element = element;
  }

  /** Keeps the place free even between two lines, so that the other track does not move. */
  reserve(languageTag) {
    this.#element.lang = languageTag;
    this.#element.hidden = false;
  }

  show(cues) {
    const text = cues.flatMap((cue) => cue.lines).join('\n');
    if (text === this.#shown) return;
    this.#shown = text;
    this.#element.textContent = text;
  }
}
