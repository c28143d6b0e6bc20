// SPDX-License-Identifier: GPL-3.0-or-later

const gap = 10;
const margin = 10;
const leastHeight = 120; // rather than that, some of a line is hidden

/**
 * Where a card of this width stands by a word: { left, top or bottom, maxHeight }, in CSS pixels of the window; top and
 * bottom are distances from the window's edges. word: its rectangle; lines: the rectangle of all lines, which the card
 * must not hide; window: { width, height }; reserved: the height of the bar beneath.
 */
export function cardPlace({ word, lines, width, window, reserved }) {
  const middle = (word.left + word.right) / 2;
  const left = Math.max(margin, Math.min(middle - width / 2, window.width - width - margin));
  const above = lines.top - gap - margin;
  const below = window.height - reserved - lines.bottom - gap;
  if (above >= below) {
    const bottom = Math.min(window.height - lines.top + gap, window.height - margin - leastHeight);
    return { left, bottom, maxHeight: Math.max(above, leastHeight) };
  }
  return { left, top: lines.bottom + gap, maxHeight: Math.max(below, leastHeight) };
}
