// SPDX-License-Identifier: GPL-3.0-or-later

import { decimal, t } from '../../shared/texts.mjs';

// How a subtitle's own times become the film's. A timing as the service keeps it: { offsetMs, rateNumerator,
// rateDenominator, cut: { atMs, offsetMs } or null }. Pure functions; times in milliseconds.

export const unmoved = Object.freeze({ offsetMs: 0, rateNumerator: 1, rateDenominator: 1, cut: null });

/** How many frames a second films have: a subtitle made for one speed runs away from a film of another. */
export const frameRates = [
  { numerator: 24000, denominator: 1001 },
  { numerator: 24, denominator: 1 },
  { numerator: 25, denominator: 1 },
  { numerator: 30000, denominator: 1001 },
];

const gcd = (a, b) => (b === 0 ? a : gcd(b, a % b));

export function isUnmoved({ offsetMs, rateNumerator, rateDenominator, cut }) {
  return offsetMs === 0 && rateNumerator === rateDenominator && !cut;
}

export function filmTime(ownMs, { offsetMs, rateNumerator, rateDenominator, cut }) {
  const afterCut = cut && ownMs >= cut.atMs ? cut.offsetMs : 0;
  return Math.round((ownMs * rateNumerator) / rateDenominator) + offsetMs + afterCut;
}

/** The cues in the film's time, in order. Each keeps its place in the list as it was. */
export function retimed(cues, timing) {
  const moved = cues.map((cue) => ({
    ...cue,
    startMs: filmTime(cue.startMs, timing),
    // A line that runs across the cut stays as long as it is.
    endMs: filmTime(cue.startMs, timing) + Math.round(((cue.endMs - cue.startMs) * timing.rateNumerator) / timing.rateDenominator),
  }));
  return moved.sort((a, b) => a.startMs - b.startMs); // a stable sort
}

export function shifted(timing, byMs) {
  return { ...timing, offsetMs: timing.offsetMs + byMs };
}

/** The timing by which the cue, given in its own time, begins at positionMs of the film. */
export function startingAt(timing, cue, positionMs) {
  return shifted(timing, Math.floor(positionMs) - filmTime(cue.startMs, timing));
}

/**
 * The timing for a subtitle that was made for a film of the one frame rate and lies over one of the other. What was
 * moved to where it fits stays so at positionMs of the film.
 */
export function withRate(timing, made, shown, positionMs) {
  const top = made.numerator * shown.denominator;
  const bottom = made.denominator * shown.numerator;
  const divisor = gcd(top, bottom);
  const rate = { rateNumerator: top / divisor, rateDenominator: bottom / divisor };
  const moved = { ...timing, ...rate };
  // What has not been moved fits at the beginning, if anywhere.
  if (isUnmoved(timing)) return moved;
  const ownAt = (filmMs) => ((filmMs - timing.offsetMs) * timing.rateDenominator) / timing.rateNumerator;
  const before = ownAt(positionMs);
  const isBehindCut = timing.cut && before >= timing.cut.atMs;
  const own = isBehindCut ? ownAt(positionMs - timing.cut.offsetMs) : before;
  return shifted(moved, Math.round(positionMs) - filmTime(own, moved));
}

export function isSameRate(timing, made, shown) {
  return timing.rateNumerator * made.denominator * shown.numerator
    === timing.rateDenominator * made.numerator * shown.denominator;
}

const seconds = (ms) => decimal(Math.abs(ms) / 1000, Math.abs(ms) % 100 === 0 ? 1 : 2);

export function offsetText(offsetMs) {
  if (offsetMs === 0) return t('timing.asItIs');
  return t(offsetMs > 0 ? 'timing.later' : 'timing.earlier', { seconds: seconds(offsetMs) });
}

/** What a timing does, in words. */
export function timingText(timing) {
  const parts = [offsetText(timing.offsetMs)];
  if (timing.rateNumerator !== timing.rateDenominator) {
    const share = (timing.rateNumerator / timing.rateDenominator) * 100;
    parts.push(t('timing.stretched', { percent: decimal(share, 2) }));
  }
  if (timing.cut) parts.push(t('timing.afterCut', { shift: offsetText(timing.cut.offsetMs) }));
  return parts.join(', ');
}
