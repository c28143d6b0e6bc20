// SPDX-License-Identifier: GPL-3.0-or-later

// Where in a film the learner has asked to be, on its way from the home page to the player's. The program hands over a
// film and no place; what is not fetched soon was meant for a film that has not come.

const name = 'askedPlace';
const goodForMs = 120_000;

/** storage: the pages' localStorage; nowMs: of the clock on the wall. */
export function leavePlace(storage, videoId, positionMs, nowMs) {
  storage.setItem(name, JSON.stringify({ videoId, positionMs, leftAtMs: nowMs }));
}

/** The place that was left for this film; null when there is none. It is gone then, whatever film it was for. */
export function takePlace(storage, videoId, nowMs) {
  const text = storage.getItem(name);
  storage.removeItem(name);
  let left = null;
  try {
    left = JSON.parse(text);
  } catch {
    return null;
  }
  const age = nowMs - left?.leftAtMs;
  return left?.videoId === videoId && age >= 0 && age < goodForMs && left.positionMs >= 0 ? left.positionMs : null;
}
