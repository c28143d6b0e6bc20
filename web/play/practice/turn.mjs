// SPDX-License-Identifier: GPL-3.0-or-later

// One look of the engine at the film: what is so now, what has happened since the last look, and what the tools want.

import { mayPauseAt } from '../film/lastsecond.mjs';

/** What the engine remembers from look to look. */
export const asleep = Object.freeze({
  seen: null, // the look before: { positionMs, now, speed, jumps }
  made: null, // the place of the line after which a stop was made last, or is not to be made
  landedMs: null, // where the last jump went
  run: null, // what was asked for with a line: { kind, place, ... }
  section: null, // { fromMs, toMs: null until it is set }
  jumpedGap: null, // the end of the silence that was jumped over last
  ownSpeed: 1, // the learner's, while a tool has set another
  toolSpeed: null,
  leftSpeed: '', // what the learner has set another speed in: the tool leaves it alone
  isHushed: false,
});

// Reports wander, timers are late: only further off than this the film has been moved.
const jumpMs = 500;
// What is noticed later than this is missed: a stop in the middle of the next line helps nobody.
const missedMs = 400;
// Timers may come this much too early.
const earlyMs = 1.5;
// Late reports after a stop do not make it anew; going back this far before it, or before its line, does.
const leastBackMs = 600;
const farBackMs = 1500;
const lineBeginsMs = 250;
const secondMs = 1000;
// So long before its end a film may be over.
const endZoneMs = 300;

export class Turn {
  state;
  position;
  lines;
  settings;
  moment;
  hasJumped = false;
  #from;
  #deeds = [];
  #wakes = [];
  #wakeNow = Infinity;
  #speed = null; // { speed, of }
  #isHushed = false;

  /**
   * moment: { now, positionMs: where a command given now works, isPlaying, moves, speed, durationMs: or null, jumps:
   * how often the learner has moved the film, isHeld: whether the learner does something that time to speak must wait
   * for }. world: { lines: SpokenLines, settings: as in defaults.mjs }.
   */
  constructor(state, moment, { lines, settings }) {
    this.state = { ...state };
    this.moment = moment;
    this.lines = lines;
    this.settings = settings;
    this.position = moment.positionMs;
    this.#from = state.seen ? state.seen.positionMs : this.position;
    this.#followJump();
    this.#followSpeed();
    this.#rearm();
  }

  get moves() {
    return this.moment.moves;
  }

  /** True at the first look after the film has run over ms. */
  crossed(ms) {
    return this.moves && this.#from < ms - earlyMs && this.position >= ms - earlyMs && this.position - ms <= missedMs;
  }

  reached(ms) {
    return this.position >= ms - earlyMs;
  }

  /** The film has to be looked at when it comes to ms. */
  wakeAt(ms) {
    if (ms > this.position) this.#wakes.push(ms);
  }

  /** The film has to be looked at at this time of the clock. */
  wakeAtTime(now) {
    this.#wakeNow = Math.min(this.#wakeNow, now);
  }

  /** Where to stop after the line: the film must not have come to its end before. */
  stopOf({ stopMs }) {
    const { durationMs } = this.moment;
    return durationMs === null ? stopMs : Math.min(stopMs, durationMs - endZoneMs);
  }

  /** False in the film's last second. */
  mayPauseAt(ms) {
    return mayPauseAt(ms, this.moment.durationMs);
  }

  /** The line that the learner means: the one just heard, or the one that was just gone to. -1 before the first. */
  currentPlace() {
    const { made, landedMs } = this.state;
    if (landedMs !== null) {
      const meant = this.lines.lastStarted(landedMs - 1) + 1;
      const startMs = this.lines.line(meant)?.startMs;
      if (this.position >= landedMs && this.position < startMs && startMs < landedMs + secondMs) return meant;
    }
    const stopMs = this.lines.line(made)?.stopMs;
    return Math.abs(this.position - stopMs) <= missedMs ? made : this.lines.lastStarted(this.position);
  }

  /** Pauses after a line or, as the film's time tells it, just before: so the line stays in sight. */
  pauseAt(stopMs) {
    this.#deeds.push({ name: 'pause', standsAtMs: stopMs - 1 });
  }

  play() {
    if (!this.moment.isPlaying) this.#deeds.push({ name: 'play' });
  }

  seekTo(second) {
    this.#deeds.push({ name: 'seek', second });
    this.position = second * secondMs;
    this.#from = this.position;
    this.#wakes = [];
  }

  /** Must be wanted at each look, or the learner's own speed comes back. of: names what it is wanted for. */
  wantSpeed(speed, of) {
    if (this.state.leftSpeed !== of) this.#speed = { speed, of };
  }

  /** Whether the film has the speed now that was wanted for this. */
  hasSpeedOf(of) {
    return this.state.toolSpeed?.of === of;
  }

  /** Must be wanted at each look, or the sound comes back. */
  wantHush() {
    this.#isHushed = true;
  }

  say(key, values) {
    this.#deeds.push({ name: 'say', key, values });
  }

  /** { state, deeds: what to do now, in order, nextMs: the position to look at next, nextNow: and the time }. */
  result() {
    this.#settleSpeed();
    if (this.#isHushed !== this.state.isHushed) this.#deeds.unshift({ name: 'hush', on: this.#isHushed });
    this.state.isHushed = this.#isHushed;
    const { now, speed, jumps } = this.moment;
    this.state.seen = { positionMs: this.position, now, speed, jumps };
    const nextMs = Math.min(Infinity, ...this.#wakes);
    return { state: this.state, deeds: this.#deeds, nextMs, nextNow: this.#wakeNow };
  }

  #followJump() {
    const { seen } = this.state;
    if (!seen) return;
    const furthest = seen.positionMs + (this.moment.now - seen.now) * Math.max(seen.speed, this.moment.speed) + jumpMs;
    const isNear = this.position >= seen.positionMs - jumpMs && this.position <= furthest;
    if (isNear && seen.jumps === this.moment.jumps) return;
    this.hasJumped = true;
    this.#from = this.position;
    this.landed();
  }

  /** The film has gone to its position: what remains there of a line is not what was gone to. */
  landed() {
    this.state.landedMs = this.position;
    const place = this.lines.lastStarted(this.position);
    const line = this.lines.line(place);
    const isRest = line && line.startMs < this.position - lineBeginsMs && line.stopMs > this.position;
    if (isRest && this.lines.line(place + 1)?.startMs < this.position + secondMs) this.state.made = place;
  }

  #rearm() {
    const { made } = this.state;
    if (made === null) return;
    const line = this.lines.line(made);
    const isBeforeLine = line && this.position <= Math.min(line.startMs + lineBeginsMs, line.stopMs - leastBackMs);
    if (!line || isBeforeLine || this.position < line.stopMs - farBackMs) this.state.made = null;
  }

  // Another speed than the tool's: the learner has set it.
  #followSpeed() {
    const { toolSpeed } = this.state;
    if (toolSpeed === null || Math.abs(this.moment.speed - toolSpeed.speed) < 0.001) return;
    this.state.ownSpeed = this.moment.speed;
    this.state.leftSpeed = toolSpeed.of;
    this.state.toolSpeed = null;
  }

  #settleSpeed() {
    const had = this.state.toolSpeed;
    if (!had && this.#speed) this.state.ownSpeed = this.moment.speed;
    const before = had ? had.speed : this.moment.speed;
    const after = this.#speed?.speed ?? (had ? this.state.ownSpeed : before);
    this.state.toolSpeed = this.#speed;
    if (after !== before) this.#deeds.unshift({ name: 'speed', speed: after });
  }
}
