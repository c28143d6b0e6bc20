// SPDX-License-Identifier: GPL-3.0-or-later

// The timing of all line tools: what is to be done now, and at which position of the film to look again. It has no
// clock, no timer and no player: they come in as a moment and go out as deeds. It goes by one track only, in the
// film's time, so that whatever delay has been set holds here as well.

import { beginRun, followRun, followSection, markSection, runToNextEnd, stepRun } from './repeats.mjs';
import { passSilence } from './silences.mjs';
import { asleep, Turn } from './turn.mjs';

export { asleep };

/** The film has gone on, or something has changed. Returns { state, deeds, nextMs, nextNow } as Turn.result() does. */
export function look(state, moment, world) {
  if (moment.positionMs === null) return { state, deeds: [], nextMs: Infinity, nextNow: Infinity };
  const turn = new Turn(state, moment, world);
  follow(turn);
  return turn.result();
}

// What repeats a line has the film for itself; what was asked for once goes before the pauses.
function follow(turn) {
  if (turn.state.jumpedGap !== null) forgetGap(turn);
  if (turn.state.run) followRun(turn);
  const { run, section } = turn.state;
  if (run && run.kind !== 'once') return;
  if (section) followSection(turn);
  if (!run) pauseAfterLines(turn);
  passSilence(turn);
}

const requests = {
  replayThenPause: (turn) => beginRun(turn, 'once', Math.max(0, turn.currentPlace())),
  playToNextEnd: runToNextEnd,
  loopLine: (turn) => toggleRun(turn, 'loop'),
  drill: (turn) => toggleRun(turn, 'drill'),
  loopSection: (turn) => {
    markSection(turn);
    return true;
  },
  // With a loop or a drill, the steps between lines take it along; otherwise they are none of the engine's.
  previousLine: (turn) => stepRun(turn, -1),
  nextLine: (turn) => stepRun(turn, 1),
  replayLine: (turn) => stepRun(turn, 0),
  stop: (turn) => {
    turn.state.run = null;
    turn.state.section = null;
    return true;
  },
};

/**
 * The learner asks for something: a name of those above. Returns what look() returns, and isDone: false where there is
 * no line for it.
 */
export function ask(state, request, moment, world) {
  if (moment.positionMs === null) return { state, deeds: [], nextMs: Infinity, nextNow: Infinity, isDone: false };
  const turn = new Turn(state, moment, world);
  const isDone = requests[request](turn);
  turn.hasJumped = false; // what is asked for is asked for here
  follow(turn);
  return { ...turn.result(), isDone };
}

function toggleRun(turn, kind) {
  if (turn.state.run?.kind === kind) {
    turn.state.run = null;
    return true;
  }
  return beginRun(turn, kind, Math.max(0, turn.currentPlace()));
}

function pauseAfterLines(turn) {
  const { autoPause, hardOnly } = turn.settings;
  if (!autoPause) return;
  const isWanted = (line) => (!hardOnly || line.isHard()) && turn.mayPauseAt(line.stopMs);
  // The lines whose end the film may just have run over, and the first to come.
  for (let place = turn.lines.firstStopAfter(turn.position - 1000); ; place += 1) {
    const line = turn.lines.line(place);
    if (!line) return;
    if (place === turn.state.made || !isWanted(line)) continue;
    if (turn.crossed(line.stopMs)) {
      turn.pauseAt(line.stopMs);
      turn.state.made = place;
    } else if (!turn.reached(line.stopMs)) {
      turn.wakeAt(line.stopMs);
      return;
    }
  }
}

// A silence that lies before or behind the film again may be jumped over again.
function forgetGap(turn) {
  const gap = turn.lines.gapAt(turn.position);
  const isAhead = !gap && turn.position < turn.state.jumpedGap;
  if (isAhead || (gap && gap.toMs !== turn.state.jumpedGap)) turn.state.jumpedGap = null;
}
