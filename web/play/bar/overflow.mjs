// SPDX-License-Identifier: GPL-3.0-or-later

/**
 * Which of a row's items have no room: their places. items: [{ width, rank }]; those of the lowest rank go first.
 * room: for them all; moreWidth: of the button behind which the others lie, which takes room when there are any.
 */
export function withoutRoom(items, room, moreWidth) {
  const gone = new Set();
  let needed = items.reduce((sum, { width }) => sum + width, 0);
  if (needed <= room) return gone;
  needed += moreWidth;
  const order = items.map(({ rank }, place) => ({ rank, place })).filter(({ rank }) => rank < Infinity)
    .sort((a, b) => a.rank - b.rank);
  for (const { place } of order) {
    if (needed <= room) break;
    gone.add(place);
    needed -= items[place].width;
  }
  return gone;
}
