// SPDX-License-Identifier: GPL-3.0-or-later

// Steps from line to line. The player seeks to whole seconds only, so that a jump to a line lands up to a second
// before it, often within the line before: the line that was asked for stays the current one until it is over.

/** Where to seek, in whole seconds, to hear a line from its beginning. */
export function secondsBefore(startMs) {
  return Math.floor(startMs / 1000);
}

// A line that has begun only just now is not the one that is meant: the film may have paused after the one before.
const justBegunMs = 60;

export class LineSteps {
  #index;
  #asked = null; // place of the line last jumped to

  constructor(index) {
    this.#index = index;
  }

  /** The place of the line that is heard, or was heard last, at time; -1 before the first. */
  current(time) {
    const cue = this.#index.cues[this.#asked];
    if (cue && time >= secondsBefore(cue.startMs) * 1000 - 300 && time < cue.startMs + justBegunMs) return this.#asked;
    this.#asked = null;
    return this.#index.lastStarted(time - justBegunMs);
  }

  /** When the line begins that was jumped to and has not begun yet at time; null when there is none. */
  startAhead(time) {
    const place = this.current(time);
    const cue = place === this.#asked ? this.#index.cues[place] : null;
    return cue && cue.startMs > time ? cue.startMs : null;
  }

  /** The line to jump to; null when there is none. step: -1 the line before, 0 the same again, 1 the next. */
  jump(step, time) {
    const wanted = this.current(time) + step;
    const place = step < 0 ? Math.max(0, wanted) : wanted;
    const cue = this.#index.cues[place];
    if (!cue) return null;
    this.#asked = place;
    return cue;
  }

  /** Makes a line the current one; null when there is none at this place. */
  goTo(place) {
    const cue = this.#index.cues[place];
    if (cue) this.#asked = place;
    return cue ?? null;
  }
}
