// SPDX-License-Identifier: GPL-3.0-or-later

// What happens where nobody speaks: the film jumps on to the next line, or runs faster.

// Voices outlast their lines a little, and a line is understood better from a breath before it.
const tailMs = 300;
const leadMs = 300;
// A seek takes about a third of a second by itself.
const leastGainMs = 1500;
// The player's sound takes a change of speed this much later than its picture.
const changeMs = 200;
// Where a command works depends on the speed: what has just been given back is not taken again for the few
// milliseconds that are left by that.
const leastHurryMs = 400;

const secondMs = 1000;

/** Condensed playback and fast gaps. */
export function passSilence(turn) {
  const { condensed, condensedSeconds, fastGaps, fastGapSeconds, fastGapSpeed } = turn.settings;
  if (!condensed && !fastGaps) return;
  const gap = turn.lines.gapAt(turn.position);
  if (!gap) {
    wakeAfterLine(turn);
    return;
  }
  const lengthMs = gap.toMs - gap.fromMs;
  if (lengthMs === Infinity) return; // what comes after the last line is the learner's to watch
  if (condensed && lengthMs >= condensedSeconds * secondMs && jump(turn, gap)) return;
  if (fastGaps && lengthMs >= fastGapSeconds * secondMs) hurry(turn, gap, fastGapSpeed);
}

function wakeAfterLine(turn) {
  const line = turn.lines.line(turn.lines.lastStarted(turn.position));
  turn.wakeAt(line.endMs + tailMs);
}

// True when the film goes to the next line, now or at the next look.
function jump(turn, { fromMs, toMs }) {
  // Whoever goes back into what was jumped over wants to see it.
  if (turn.state.jumpedGap === toMs) return false;
  const second = Math.floor((toMs - leadMs) / secondMs);
  const beginMs = fromMs === 0 ? 0 : fromMs + tailMs;
  if (second * secondMs - Math.max(beginMs, turn.position) < leastGainMs) return false;
  if (!turn.reached(beginMs)) {
    turn.wakeAt(beginMs);
  } else if (turn.moves) {
    turn.seekTo(second);
    turn.state.jumpedGap = toMs;
  }
  return true;
}

function hurry(turn, { fromMs, toMs }, speed) {
  const beginMs = fromMs === 0 ? 0 : fromMs + tailMs;
  const endMs = toMs - leadMs - changeMs * speed;
  if (endMs - beginMs < leastGainMs) return;
  if (!turn.reached(beginMs)) {
    turn.wakeAt(beginMs);
    return;
  }
  const of = `gap ${toMs}`;
  if (turn.reached(turn.hasSpeedOf(of) ? endMs : endMs - leastHurryMs)) return;
  turn.wantSpeed(speed, of);
  turn.wakeAt(endMs);
}
