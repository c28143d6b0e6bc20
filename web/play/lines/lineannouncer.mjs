// SPDX-License-Identifier: GPL-3.0-or-later

/**
 * Tells screen readers the lines that show while the film stands, and only then: while it runs they would talk over it.
 */
export class LineAnnouncer {
  #element;
  #views;
  #said = '';

  /** element: a live region; views: LinesViews, the upper line first. */
  constructor(element, views) {
    this.#element = element;
    this.#views = views;
  }

  /** To be called after changes of the film. */
  update(isPaused) {
    const views = isPaused ? this.#views.filter(({ cues }) => cues.length > 0) : [];
    const said = views.map(({ text }) => text.text).join('\n');
    if (said === this.#said) return;
    this.#said = said;
    this.#element.replaceChildren(...views.map((view) => this.#paragraph(view)));
  }

  #paragraph({ element, text }) {
    const paragraph = element.ownerDocument.createElement('p');
    paragraph.lang = element.lang;
    paragraph.textContent = text.text;
    return paragraph;
  }
}
