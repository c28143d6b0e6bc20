// SPDX-License-Identifier: GPL-3.0-or-later

const covers = (ranges, place) => ranges.some(({ start, end }) => start <= place && place < end);

/** A text cut where something begins or ends: [{ text, isMarked, isItalic }, ...]; marks, slants: [{ start, end }]. */
export function piecesOf(text, marks, slants) {
  const ends = [...marks, ...slants].flatMap(({ start, end }) => [start, end]);
  const cuts = [...new Set([0, ...ends, text.length])].sort((a, b) => a - b);
  return cuts.slice(0, -1).map((from, i) => ({
    text: text.slice(from, cuts[i + 1]),
    isMarked: covers(marks, from),
    isItalic: covers(slants, from),
  }));
}
