// SPDX-License-Identifier: GPL-3.0-or-later

import { listText, pairLines, slantsOf } from './pairs.mjs';

/**
 * What a list shows of the cues of two tracks: [{ place, cue, startMs, text, slants, under, underSlants }], place:
 * among the upper cues; the slants say where a text is slanted.
 */
export function listedLines(cues, lowerCues) {
  const beneath = pairLines(cues, lowerCues);
  return cues.map((cue, place) => ({
    place,
    cue,
    startMs: cue.startMs,
    text: listText(cue),
    slants: slantsOf([cue]),
    under: beneath[place].map(listText).join('\n'),
    underSlants: slantsOf(beneath[place]),
  }));
}

/** Whether the upper texts are the same: what differs otherwise (times, what lies beneath) leaves a list where it is. */
export function isSameList(before, after) {
  return before.length === after.length && before.every(({ text }, i) => text === after[i].text);
}

/** Of the same rows, those that another text lies beneath now, and those of another time: { texts, times }. */
export function changedRows(before, after) {
  const rows = [...after.keys()];
  const isOther = (i, name) => before[i][name] !== after[i][name];
  return {
    texts: rows.filter((i) => isOther(i, 'text') || isOther(i, 'under')),
    times: rows.filter((i) => isOther(i, 'startMs')),
  };
}

/** Where a row is to be found when others are listed: itself, or else what follows it; the last beyond the end. */
export function rowNow(before, after, row) {
  if (row < 0 || row >= before.length) return -1;
  const found = after.findIndex(({ place }) => place >= before[row].place);
  return found < 0 ? after.length - 1 : found;
}
