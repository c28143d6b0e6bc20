// SPDX-License-Identifier: GPL-3.0-or-later

// When a word comes back, as the service has it: each status has its interval, a grade chooses the status.

import { t } from '../../shared/texts.mjs';

const minuteMs = 60_000;
const hourMs = 60 * minuteMs;
const dayMs = 24 * hourMs;
const soonMs = 10 * minuteMs;
const ladder = ['new', 'learning1', 'learning2', 'learning3', 'learning4', 'known'];
const intervalsMs = {
  new: 0, learning1: dayMs, learning2: 3 * dayMs, learning3: 7 * dayMs, learning4: 16 * dayMs, known: null,
};

/** In the order of their keys, 1 to 4. */
export const grades = ['again', 'hard', 'good', 'easy'];

/** In how many ms a word of this status comes back by each grade; null: it is known and does not. */
export function intervalsOf(status) {
  const at = Math.max(0, ladder.indexOf(status));
  const step = (steps) => intervalsMs[ladder[Math.min(at + steps, ladder.length - 1)]];
  return { again: soonMs, hard: Math.max(step(0) / 2, soonMs), good: step(1), easy: step(2) };
}

/** A length of time in its largest unit: "3 hours". */
export function lengthText(lengthMs) {
  if (lengthMs < 1.5 * minuteMs) return t('length.minutes', { count: 1 });
  if (lengthMs < 55 * minuteMs) return t('length.minutes', { count: Math.round(lengthMs / minuteMs) });
  if (lengthMs < 23 * hourMs) return t('length.hours', { count: Math.max(1, Math.round(lengthMs / hourMs)) });
  return t('length.days', { count: Math.max(1, Math.round(lengthMs / dayMs)) });
}

/** What a grade's button tells: "3 days", or that the word is known then. */
export const outcomeText = (lengthMs) => (lengthMs === null ? t('review.thenKnown') : lengthText(lengthMs));
