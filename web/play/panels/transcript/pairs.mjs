// SPDX-License-Identifier: GPL-3.0-or-later

// Which lines of the lower track belong beneath a line of the upper one: those that are said with it.

import { CueIndex } from '../../lines/cueindex.mjs';
import { runsOf } from '../../lines/runs.mjs';

/** Of a line that has nothing of its own beneath it, how much a neighbour's must cover to be shown there, too. */
const leastShare = 0.5;

const overlapMs = (a, b) => Math.min(a.endMs, b.endMs) - Math.max(a.startMs, b.startMs);

/**
 * For each cue of upper the cues of lower beneath it; both by start, in the film's time. What does not show, because
 * too much does at its time, has nothing beneath it and is beneath nothing.
 */
export function pairLines(upper, lower) {
  const beneath = new Map(upper.map((line) => [line, []]));
  const also = new Map(); // by line, the neighbour's cue that covers most of it
  const index = new CueIndex(upper);
  for (const cue of new CueIndex(lower).shown) {
    let best = null;
    for (const line of index.between(cue.startMs, cue.endMs)) {
      const common = overlapMs(line, cue);
      if (common <= 0) continue;
      if (!best || common >= overlapMs(best, cue)) best = line;
      if (!also.has(line) || common > overlapMs(line, also.get(line))) also.set(line, cue);
    }
    if (best) beneath.get(best).push(cue);
  }
  return upper.map((line) => {
    const covers = also.has(line) && overlapMs(line, also.get(line)) >= leastShare * (line.endMs - line.startMs);
    return beneath.get(line).length === 0 && covers ? [also.get(line)] : beneath.get(line);
  });
}

const beginsSpeech = (line) => /^\s*[-–—‐]/.test(line);

/** A cue's lines as they read in a list: run together, but for two speakers. */
export function listText({ lines }) {
  return lines.join(lines.some(beginsSpeech) ? '\n' : ' ');
}

/** Where the listText() of such cues, one beneath the other, is slanted: [{ start, end }, ...] in order. */
export function slantsOf(cues) {
  const slants = [];
  let start = 0;
  for (const runs of cues.flatMap(runsOf)) {
    for (const { text, isItalic } of runs) {
      if (isItalic) slants.push({ start, end: start + text.length });
      start += text.length;
    }
    start += 1; // what parts two lines
  }
  return slants;
}
