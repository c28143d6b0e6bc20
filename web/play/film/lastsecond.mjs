// SPDX-License-Identifier: GPL-3.0-or-later

// The player takes a pause in the film's last second, counted in whole ones, for its end and leaves for home.

const secondMs = 1000;
// Of where the film is, the page knows only about so much.
const marginMs = 300;

/** False where a pause would end the film. durationMs: null when nobody knows it. */
export function mayPauseAt(ms, durationMs) {
  return durationMs === null || ms < Math.floor(durationMs / secondMs) * secondMs - marginMs;
}
