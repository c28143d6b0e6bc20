// SPDX-License-Identifier: GPL-3.0-or-later

// What the line tools take for a line. Subtitles hold more than that: two speakers at once, signs that stand over a
// whole scene, cues that begin where the one before ends. Film times in milliseconds; pure.

import { lastStarted } from '../lines/cueindex.mjs';

// Cues that share no more than this are two lines, one after the other.
const sharedMs = 20;
// So long before the next line begins the film must stand, or its first sound is heard.
const guardMs = 15;

// A cue over several others that do not touch it otherwise is no speech but a sign or a song.
function withoutBackground(cues) {
  const isSpeech = [];
  // From the last to the first: of the cues that come after one, the two earliest ends tell whether two are within it.
  let later = [Infinity, Infinity]; // the ends of those that begin later
  let beside = [Infinity, Infinity]; // of those that begin at the same time: they must end earlier
  for (let place = cues.length - 1; place >= 0; place -= 1) {
    const { startMs, endMs } = cues[place];
    if (cues[place + 1]?.startMs !== startMs) {
      later = twoLeast([...later, ...beside]);
      beside = [Infinity, Infinity];
    }
    const within = later.filter((end) => end <= endMs).length + beside.filter((end) => end < endMs).length;
    isSpeech[place] = within < 2;
    beside = twoLeast([...beside, endMs]);
  }
  return cues.filter((_, place) => isSpeech[place]);
}

const twoLeast = (numbers) => numbers.sort((a, b) => a - b).slice(0, 2);

export class SpokenLines {
  #lines = [];

  /** cues: { startMs, endMs, ... } by start. isHard(cue): whether it has a word that the learner does not know. */
  constructor(cues = [], isHard = () => false) {
    for (const cue of withoutBackground(cues.filter(({ startMs, endMs }) => endMs > startMs))) {
      const last = this.#lines[this.#lines.length - 1];
      if (last && cue.startMs < last.endMs - sharedMs) {
        last.endMs = Math.max(last.endMs, cue.endMs);
        last.cues.push(cue);
      } else {
        this.#lines.push({ startMs: cue.startMs, endMs: cue.endMs, cues: [cue] });
      }
    }
    this.#lines.forEach((line, i) => {
      const following = this.#lines[i + 1];
      line.stopMs = following ? Math.min(line.endMs, following.startMs - guardMs) : line.endMs;
      line.isHard = () => line.cues.some(isHard);
    });
  }

  get count() {
    return this.#lines.length;
  }

  /** { startMs, endMs, stopMs: where to stop after it, isHard() }; undefined where there is none. */
  line(place) {
    return this.#lines[place];
  }

  /** The place of the last line that has begun at time; -1 before the first. */
  lastStarted(time) {
    return lastStarted(this.#lines, time);
  }

  /** The place of the first line that is to be stopped after later than time; the count when there is none. */
  firstStopAfter(time) {
    let place = Math.max(0, this.lastStarted(time));
    while (place < this.#lines.length && this.#lines[place].stopMs <= time) place += 1;
    return place;
  }

  /** The silence at time: { fromMs, toMs }, Infinity after the last line; null within a line. */
  gapAt(time) {
    const place = this.lastStarted(time);
    if (place >= 0 && this.#lines[place].endMs > time) return null;
    return { fromMs: this.#lines[place]?.endMs ?? 0, toMs: this.#lines[place + 1]?.startMs ?? Infinity };
  }
}
