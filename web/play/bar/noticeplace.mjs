// SPDX-License-Identifier: GPL-3.0-or-later

const edge = 14;
const leastWidth = 150; // less is no place for a word

/**
 * Where a notice stands beside what lies over the picture: { middle, maxWidth } of the widest free stretch, in CSS pixels;
 * null: nothing is in its way, or there is no room beside it. others: rectangles in the window; bottom: how far down the
 * notice reaches.
 */
export function noticePlace(width, bottom, others) {
  const inTheWay = others.filter((each) => each.top < bottom).sort((a, b) => a.left - b.left);
  if (inTheWay.length === 0) return null;
  let best = { left: 0, right: 0 };
  let left = 0;
  for (const each of [...inTheWay, { left: width, right: width }]) {
    if (each.left - left > best.right - best.left) best = { left, right: each.left };
    left = Math.max(left, each.right);
  }
  const maxWidth = best.right - best.left - 2 * edge;
  return maxWidth < leastWidth ? null : { middle: (best.left + best.right) / 2, maxWidth };
}
