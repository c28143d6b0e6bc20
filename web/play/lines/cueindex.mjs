// SPDX-License-Identifier: GPL-3.0-or-later

// Which cues of a track show at a time, and when that next changes. Cues: { startMs, endMs, lines }, by start.

// More at a time nobody reads, and the picture has no room for them.
const mostAtOnce = 8;

/** The place of the last of what begins at startMs, in that order, that has begun at time; -1 before the first. */
export function lastStarted(started, time) {
  let low = 0;
  let high = started.length;
  while (low < high) {
    const middle = (low + high) >> 1;
    if (started[middle].startMs <= time) low = middle + 1;
    else high = middle;
  }
  return low - 1;
}

// Where there are too many at a time, the one that would stay longest gives way: rather a sign than speech.
function withoutCrowd(cues) {
  const tooMany = new Set();
  let showing = [];
  for (const cue of cues) {
    showing = showing.filter(({ endMs }) => endMs > cue.startMs);
    showing.push(cue);
    if (showing.length <= mostAtOnce) continue;
    const longest = showing.reduce((most, each) => (each.endMs >= most.endMs ? each : most));
    tooMany.add(longest);
    showing.splice(showing.indexOf(longest), 1);
  }
  return tooMany.size === 0 ? cues : cues.filter((cue) => !tooMany.has(cue));
}

export class CueIndex {
  #cues;
  #shown;
  #longer = []; // for each that is shown, the place of the last one before it that ends later; -1: there is none

  constructor(cues) {
    this.#cues = cues;
    this.#shown = withoutCrowd(cues);
    this.#shown.forEach(({ endMs }, i) => {
      let before = i - 1;
      while (before >= 0 && this.#shown[before].endMs <= endMs) before = this.#longer[before];
      this.#longer.push(before);
    });
  }

  get cues() {
    return this.#cues;
  }

  /** Those of the cues that ever show: at most eight at a time. */
  get shown() {
    return this.#shown;
  }

  /** The cues that show at time, earliest first. A cue shows from its start until just before its end. */
  at(time) {
    return this.between(time, time);
  }

  /** The cues that have begun by toMs and end after fromMs, earliest first. */
  between(fromMs, toMs) {
    const found = [];
    for (let i = lastStarted(this.#shown, toMs); i >= 0;) {
      const cue = this.#shown[i];
      if (cue.endMs > fromMs) found.push(cue);
      i = cue.endMs > fromMs ? i - 1 : this.#longer[i];
    }
    return found.reverse();
  }

  /** The next time after time at which at() answers otherwise; Infinity when it never does. */
  nextChange(time) {
    const following = this.#shown[lastStarted(this.#shown, time) + 1];
    const ends = this.at(time).map((cue) => cue.endMs);
    return Math.min(following ? following.startMs : Infinity, ...ends);
  }

  /** The place of the last cue that has started at time; -1 before the first. */
  lastStarted(time) {
    return lastStarted(this.#cues, time);
  }
}
