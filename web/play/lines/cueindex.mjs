// SPDX-License-Identifier: GPL-3.0-or-later

// Which cues of a track show at a time, and when that next changes. Cues: { startMs, endMs, lines }, by start.

export class CueIndex {
  #cues;
  #latestEnds; // for each cue, the latest end of it and all before it: tells how far back overlaps can reach

  constructor(cues) {
    this.#cues = cues;
    let latest = -Infinity;
    this.#latestEnds = cues.map((cue) => (latest = Math.max(latest, cue.endMs)));
  }

  get cues() {
    return this.#cues;
  }

  /** The cues that show at time, earliest first. A cue shows from its start until just before its end. */
  at(time) {
    const showing = [];
    for (let i = this.lastStarted(time); i >= 0 && this.#latestEnds[i] > time; i -= 1) {
      if (this.#cues[i].endMs > time) showing.unshift(this.#cues[i]);
    }
    return showing;
  }

  /** The next time after time at which at() answers otherwise; Infinity when it never does. */
  nextChange(time) {
    const following = this.#cues[this.lastStarted(time) + 1];
    const ends = this.at(time).map((cue) => cue.endMs);
    return Math.min(following ? following.startMs : Infinity, ...ends);
  }

  /** The place of the last cue that has started at time; -1 before the first. */
  lastStarted(time) {
    let low = 0;
    let high = this.#cues.length;
    while (low < high) {
      const middle = (low + high) >> 1;
      if (this.#cues[middle].startMs <= time) low = middle + 1;
      else high = middle;
    }
    return low - 1;
  }
}
