// SPDX-License-Identifier: GPL-3.0-or-later

// What is done with one line, or with a section, again and again. A run: { kind: 'once', 'loop' or 'drill', place: of
// the line, and of a drill round, isWaiting: for the learner to speak for gapMs, gapEndsAt: until this time of the
// clock; null while what the learner does holds it }.

import { secondsBefore } from '../lines/linesteps.mjs';

// The player seeks to whole seconds only. What is heard of another line before this one is silenced; shorter scraps
// are over before the sound has gone, and the sound needs this long to come back.
const shortestHushMs = 150;
const soundBackMs = 90;
// A seek silences the film later than a pause does: of a line that begins so soon the first sound would be heard.
const seekAheadMs = 25;
const soonMs = 50;
// The next line of a drill is waited for, not sought, when it comes so soon.
const shortWaitMs = 2500;
const shortestGapMs = 400;
// So often is looked whether the learner still holds the gap: nothing else tells of its end.
const heldLookMs = 200;
const shortestSectionMs = 500;
const secondMs = 1000;

/** Begins what is to be done with the line; false where there is none. */
export function beginRun(turn, kind, place) {
  if (!turn.lines.line(place)) return false;
  turn.state.run = { kind, place, round: 0, isWaiting: false, gapEndsAt: null };
  playLine(turn);
  return true;
}

/** Plays the run's line again, or that of so many steps further. */
export function stepRun(turn, step) {
  const { run } = turn.state;
  if (!run || run.kind === 'once') return false;
  if (step !== 0) return beginRun(turn, run.kind, Math.max(0, run.place + step));
  turn.state.run = { ...run, isWaiting: false };
  playLine(turn);
  return true;
}

/** Plays on, without going back, to the end of the line after the current one. */
export function runToNextEnd(turn) {
  const place = turn.currentPlace() + 1;
  if (!turn.lines.line(place)) return false;
  turn.state.run = { kind: 'once', place, round: 0, isWaiting: false, gapEndsAt: null };
  turn.play();
  return true;
}

/** The speed of a round: the steps are spread over the rounds, the last one is reached. */
export function speedOf(round, { rounds, speeds }) {
  // A round that is beyond the last one has begun when there were to be more.
  if (round + 1 >= rounds) return speeds[speeds.length - 1];
  return speeds[Math.round((round * (speeds.length - 1)) / (rounds - 1))];
}

export function followRun(turn) {
  // Going elsewhere takes the loop or the drill there; what was asked for once is over.
  if (turn.hasJumped) {
    if (turn.state.run.kind === 'once') {
      turn.state.run = null;
      return;
    }
    const place = Math.max(0, turn.currentPlace());
    const { run } = turn.state;
    turn.state.run = { ...run, place, round: place === run.place ? run.round : 0, isWaiting: false };
  }
  const { run } = turn.state;
  const line = turn.lines.line(run.place);
  if (!line) {
    turn.state.run = null;
    return;
  }
  if (run.kind === 'drill') wantRoundSpeed(turn);
  if (run.isWaiting) {
    waitForLearner(turn, run);
    return;
  }
  hushBefore(turn, line);
  const endMs = run.kind === 'loop' ? loopEnd(turn, line) : turn.stopOf(line);
  if (turn.moves && turn.reached(endMs)) lineIsOver(turn, line);
  else turn.wakeAt(endMs);
}

function loopEnd(turn, line) {
  const stopMs = turn.stopOf(line);
  const next = turn.lines.line(turn.state.run.place + 1);
  const aheadMs = seekAheadMs * turn.moment.speed;
  return next && next.startMs - stopMs < soonMs ? stopMs - aheadMs : stopMs;
}

function lineIsOver(turn, line) {
  const { run } = turn.state;
  turn.state.made = run.place;
  if (run.kind === 'loop') {
    playLine(turn);
    return;
  }
  const { rounds, thenNext, gapPercent } = turn.settings;
  const isLast = run.kind === 'once' || (run.round + 1 >= rounds && !(thenNext && turn.lines.line(run.place + 1)));
  const mayPause = turn.mayPauseAt(turn.position);
  const gapMs = ((line.endMs - line.startMs) * gapPercent) / 100;
  if (isLast) {
    if (mayPause) turn.pauseAt(turn.stopOf(line));
    endRun(turn);
  } else if (gapPercent > 0 && mayPause) {
    turn.pauseAt(turn.stopOf(line));
    turn.state.run = { ...run, isWaiting: true, gapMs: Math.max(shortestGapMs, gapMs) };
    beginGap(turn);
  } else {
    nextRound(turn);
  }
}

// Whoever looks a word up does not speak: the time to speak begins when that is done.
function beginGap(turn) {
  const gapEndsAt = turn.moment.isHeld ? null : turn.moment.now + turn.state.run.gapMs;
  if (gapEndsAt !== turn.state.run.gapEndsAt) turn.state.run = { ...turn.state.run, gapEndsAt };
  turn.wakeAtTime(gapEndsAt ?? turn.moment.now + heldLookMs);
}

// Whoever plays on has spoken.
function waitForLearner(turn, run) {
  const { isPlaying, isHeld, now } = turn.moment;
  if (isPlaying) nextRound(turn);
  else if (isHeld || run.gapEndsAt === null) beginGap(turn);
  else if (now >= run.gapEndsAt - 1) nextRound(turn);
  else turn.wakeAtTime(run.gapEndsAt);
}

function nextRound(turn) {
  const { run } = turn.state;
  const isSame = run.round + 1 < turn.settings.rounds;
  const place = isSame ? run.place : run.place + 1;
  const line = turn.lines.line(place);
  if (!line || !(isSame || turn.settings.thenNext)) { // it has been set otherwise meanwhile
    endRun(turn);
    return;
  }
  turn.state.run = { ...run, place, round: isSame ? run.round + 1 : 0, isWaiting: false, gapEndsAt: null };
  wantRoundSpeed(turn);
  const waitMs = line.startMs - turn.position;
  if (!isSame && waitMs <= shortWaitMs) {
    turn.play();
    turn.wakeAt(turn.stopOf(line));
  } else {
    playLine(turn);
  }
}

function endRun(turn) {
  if (turn.state.run.kind === 'drill') turn.say('practice.drillOver');
  turn.state.run = null;
}

/** Goes to the beginning of the run's line and plays. */
function playLine(turn) {
  const line = turn.lines.line(turn.state.run.place);
  if (turn.state.run.kind === 'drill') wantRoundSpeed(turn);
  turn.seekTo(secondsBefore(line.startMs));
  turn.state.made = null;
  turn.state.landedMs = turn.position;
  hushBefore(turn, line);
  turn.play();
  turn.wakeAt(turn.stopOf(line));
}

function wantRoundSpeed(turn) {
  const { place, round } = turn.state.run;
  turn.wantSpeed(speedOf(round, turn.settings), `drill ${place} ${round}`);
}

// Nobody wants to hear the end of the line before with each repetition. What is no speech may sound: it is a breath
// before the line, and the sound need not be switched.
function hushBefore(turn, line) {
  const landedMs = turn.state.landedMs;
  const untilMs = line.startMs - soundBackMs * turn.moment.speed;
  if (landedMs === null || turn.position < landedMs || turn.reached(untilMs)) return;
  const before = turn.lines.line(turn.lines.lastStarted(line.startMs - 1));
  const isSpoken = before && before !== line && before.endMs > landedMs + shortestHushMs;
  if (!isSpoken || landedMs < secondsBefore(line.startMs) * secondMs) return;
  turn.wantHush();
  turn.wakeAt(untilMs);
}

/** One key for all of a section: its beginning, its end, away with it. */
export function markSection(turn) {
  const { section } = turn.state;
  const here = turn.position;
  if (!section) {
    turn.state.section = { fromMs: here, toMs: null };
    turn.say('practice.sectionFrom');
  } else if (section.toMs === null) {
    const fromMs = Math.min(section.fromMs, here);
    const toMs = Math.max(section.fromMs, here, fromMs + shortestSectionMs);
    turn.state.section = { fromMs, toMs };
    turn.say('practice.sectionTo');
    if (turn.reached(toMs)) turn.seekTo(secondsBefore(fromMs));
  } else {
    turn.state.section = null;
    turn.say('practice.sectionOff');
  }
}

export function followSection(turn) {
  const { fromMs, toMs } = turn.state.section;
  if (toMs === null) return;
  const endMs = turn.stopOf({ stopMs: toMs });
  if (turn.crossed(endMs)) {
    turn.seekTo(secondsBefore(fromMs));
    turn.state.made = null;
    turn.landed();
  } else {
    turn.wakeAt(endMs);
  }
}
