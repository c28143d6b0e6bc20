// SPDX-License-Identifier: GPL-3.0-or-later

// Which lines of the lower track belong beneath a line of the upper one: those that are said with it.

/** Of a line that has nothing of its own beneath it, how much a neighbour's must cover to be shown there, too. */
const leastShare = 0.5;

const overlapMs = (a, b) => Math.min(a.endMs, b.endMs) - Math.max(a.startMs, b.startMs);

/** For each cue of upper the cues of lower beneath it; both by start, in the film's time. */
export function pairLines(upper, lower) {
  const beneath = upper.map(() => []);
  const also = upper.map(() => null); // the neighbour's cue that covers most of this one
  const latestEnds = [];
  upper.reduce((latest, cue, i) => (latestEnds[i] = Math.max(latest, cue.endMs)), -Infinity);
  let started = 0;
  for (const cue of lower) {
    while (started < upper.length && upper[started].startMs < cue.endMs) started += 1;
    let best = -1;
    for (let i = started - 1; i >= 0 && latestEnds[i] > cue.startMs; i -= 1) {
      const common = overlapMs(upper[i], cue);
      if (common <= 0) continue;
      if (best < 0 || common > overlapMs(upper[best], cue)) best = i;
      if (!also[i] || common > overlapMs(upper[i], also[i])) also[i] = cue;
    }
    if (best >= 0) beneath[best].push(cue);
  }
  return beneath.map((cues, i) => {
    const covers = also[i] && overlapMs(upper[i], also[i]) >= leastShare * (upper[i].endMs - upper[i].startMs);
    return cues.length === 0 && covers ? [also[i]] : cues;
  });
}

const beginsSpeech = (line) => /^\s*[-–—‐]/.test(line);

/** A cue's lines as they read in a list: run together, but for two speakers. */
export function listText({ lines }) {
  return lines.join(lines.some(beginsSpeech) ? '\n' : ' ');
}
