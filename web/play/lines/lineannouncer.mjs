// SPDX-License-Identifier: GPL-3.0-or-later

/**
 * Tells screen readers the lines that show when the film pauses, and only then: while it runs they would talk over it.
 */
export class LineAnnouncer {
  #element;
  #views;
  #wasPaused = false;

  /** element: a live region; views: LinesViews, the upper line first. */
  constructor(element, views) {
    this.#element = element;
    this.#views = views;
  }

  /** To be called after changes of the film. */
  update(isPaused) {
    if (isPaused === this.#wasPaused) return;
    this.#wasPaused = isPaused;
    const paragraphs = isPaused ? this.#views.filter(({ cues }) => cues.length > 0).map((view) => this.#paragraph(view)) : [];
    this.#element.replaceChildren(...paragraphs);
  }

  #paragraph({ element, text }) {
    const paragraph = element.ownerDocument.createElement('p');
    paragraph.lang = element.lang;
    paragraph.textContent = text.text;
    return paragraph;
  }
}
