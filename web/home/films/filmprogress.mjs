// SPDX-License-Identifier: GPL-3.0-or-later

const minuteMs = 60_000;

/** How far a film was watched: percent of it, and the whole minutes that are left (null: nobody knows its length). */
export function filmProgress({ positionMs, durationMs, isFinished }) {
  if (isFinished) return { percent: 100, minutesLeft: 0 };
  if (durationMs <= 0) return { percent: 0, minutesLeft: null };
  const watched = Math.min(positionMs, durationMs);
  return {
    percent: Math.round((100 * watched) / durationMs),
    minutesLeft: Math.max(1, Math.round((durationMs - watched) / minuteMs)),
  };
}
