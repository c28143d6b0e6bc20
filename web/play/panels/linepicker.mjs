// SPDX-License-Identifier: GPL-3.0-or-later

import { button, create, setHidden } from '../../shared/elements.mjs';
import { t } from '../../shared/texts.mjs';
import { Hold } from '../film/hold.mjs';
import { filmTime } from '../lines/timing.mjs';

const linesBefore = 4;
const linesAfter = 5;

/** The place, in cues by start, of the first of the few that lie around position. */
export function firstAround(cues, timing, positionMs) {
  const next = cues.findIndex((cue) => filmTime(cue.startMs, timing) > positionMs);
  const middle = next < 0 ? cues.length : next;
  return Math.max(0, Math.min(middle - linesBefore, cues.length - linesBefore - linesAfter));
}

/** A list of the lines around this moment: the one that was just said is picked, and the subtitle moves to it. */
export class LinePicker {
  element;
  #document;
  #film;
  #opener;
  #picked;
  #hold;
  #subtitleId = 0; // whose lines it lists

  /** opener: the button that opens it. picked(cue, positionMs): cue in the subtitle's own time, and when it was said. */
  constructor(document, film, opener, picked) {
    this.#document = document;
    this.#film = film;
    this.#hold = new Hold(film);
    this.#opener = opener;
    this.#picked = picked;
    this.element = create(document, 'div',
      { className: 'picker', role: 'group', 'data-label': 'timing.whichLine', hidden: true });
  }

  /** The moment that counts is this one: the film waits until a line has been picked. */
  open(line) {
    const positionMs = this.#film.positionMs;
    if (positionMs === null) return;
    this.#hold.take();
    this.#subtitleId = line.subtitleId;
    const first = firstAround(line.cues, line.timing, positionMs);
    const items = line.cues.slice(first, first + linesBefore + linesAfter).map((cue) => this.#item(cue, positionMs));
    this.element.replaceChildren(
      create(this.#document, 'p', { textContent: t('timing.whichLine') }), ...items,
      button(this.#document, { className: 'plain' }, () => this.close(), t('timing.noneOfThese')));
    this.element.lang = line.languageTag;
    this.element.hidden = false;
    this.element.scrollIntoView({ block: 'nearest' });
    this.element.querySelector('button').focus({ focusVisible: false });
  }

  /** Closes when the line shows another subtitle now. */
  showFor(subtitleId) {
    if (subtitleId !== this.#subtitleId) this.close();
  }

  /** To be called after changes of the film. */
  update() {
    this.#hold.update();
  }

  close() {
    if (this.element.hidden) return;
    setHidden(this.element, true, this.#opener);
    this.#hold.letGo();
  }

  #item(cue, positionMs) {
    return button(this.#document, { className: 'line', dir: 'auto' }, () => {
      this.#picked(cue, positionMs);
      this.close();
    }, cue.lines.join(' '));
  }
}
