// SPDX-License-Identifier: GPL-3.0-or-later
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { playDefaults } from '../../web/play/defaults.mjs';
import { ask, asleep, look } from '../../web/play/practice/engine.mjs';
import { speedOf } from '../../web/play/practice/repeats.mjs';
import { SpokenLines } from '../../web/play/practice/spokenlines.mjs';

const cue = (startMs, endMs, text = '') => ({ startMs, endMs, lines: [text] });
const off = { ...playDefaults.practice, autoPause: false };
const pausing = { ...off, autoPause: true };
const secondMs = 1000;

/** A film that does what the engine says, at once, and is looked at when the engine wants and every 250 ms. */
class Sitting {
  position = 0;
  playing = true;
  speed = 1;
  now = 5000;
  muted = false;
  durationMs = null;
  jumps = 0;
  isHeld = false;
  log = []; // "pause 2000"
  heard = []; // [from, to, speed] of what was played and not muted
  #state = asleep;

  constructor(cues, settings, isHard) {
    this.settings = settings;
    this.lines = new SpokenLines(cues, isHard);
  }

  get state() {
    return this.#state;
  }

  at(position) {
    this.position = position;
    return this;
  }

  /** What the learner does: nothing asks the engine. */
  seek(second) {
    this.position = second * secondMs;
    this.jumps += 1;
    this.#look();
  }

  press(request) {
    return this.#carryOut(ask(this.#state, request, this.#moment, this.#world)).isDone;
  }

  /** Plays until the clock has gone on so far, or the film has paused. */
  run(milliseconds, untilPause = true) {
    const end = this.now + milliseconds;
    let next = this.#look();
    while (this.now < end && (this.playing || !untilPause)) {
      const toNext = this.playing ? (next.nextMs - this.position) / this.speed : Infinity;
      const step = Math.max(0.5, Math.min(250, end - this.now, toNext, next.nextNow - this.now));
      this.now += step;
      if (this.playing) this.#play(step);
      next = this.#look();
    }
    return this;
  }

  /** The film's reported time turns out to be off. */
  correct(byMs) {
    this.position += byMs;
    this.#look();
  }

  get #moment() {
    const { now, position, playing, speed, durationMs, jumps, isHeld } = this;
    return { now, positionMs: position, isPlaying: playing, moves: playing, speed, durationMs, jumps, isHeld };
  }

  get #world() {
    return { lines: this.lines, settings: this.settings };
  }

  #play(step) {
    const from = this.position;
    this.position += step * this.speed;
    if (this.muted) return;
    const last = this.heard[this.heard.length - 1];
    if (last && last[1] === from && last[2] === this.speed) last[1] = this.position;
    else this.heard.push([from, this.position, this.speed]);
  }

  #look() {
    return this.#carryOut(look(this.#state, this.#moment, this.#world));
  }

  #carryOut(outcome) {
    this.#state = outcome.state;
    for (const deed of outcome.deeds) this.#do(deed);
    if (outcome.deeds.length === 0) return outcome;
    return { ...this.#look(), isDone: outcome.isDone };
  }

  #do({ name, second, speed, on, standsAtMs }) {
    if (name !== 'say') this.log.push([name, second ?? speed ?? on ?? Math.round(this.position)].join(' '));
    if (name === 'pause') {
      assert.ok(Math.abs(standsAtMs - this.position) < 3);
      this.playing = false;
    }
    if (name === 'play') this.playing = true;
    if (name === 'seek') this.position = second * secondMs;
    if (name === 'speed') this.speed = speed;
    if (name === 'hush') this.muted = on;
  }
}

/** Lets the film run to its end, playing on after each pause; tells where it paused. */
function pauses(cues, settings = pausing, { isHard, speed = 1, until = 20_000, after = () => {} } = {}) {
  const sitting = new Sitting(cues, settings, isHard);
  sitting.speed = speed;
  for (let limit = 0; sitting.position < until && limit < 100; limit += 1) {
    sitting.run(until);
    if (sitting.playing) break;
    after(sitting);
    sitting.playing = true;
  }
  return sitting.log.map((deed) => Number(deed.replace('pause ', '')));
}

const near = (actual, expected, slack = 3) => {
  assert.equal(actual.length, expected.length, `${actual} for ${expected}`);
  expected.forEach((each, i) => assert.ok(Math.abs(actual[i] - each) <= slack, `${actual} for ${expected}`));
};

const talk = [cue(1000, 2000, 'a'), cue(3000, 4200, 'b'), cue(4200, 5000, 'c'), cue(9000, 10_500, 'd')];

test('the film pauses after each line, once, at every speed', () => {
  for (const speed of [0.5, 1, 1.7, 2]) near(pauses(talk, pausing, { speed }), [2000, 4185, 5000, 10_500]);
  assert.deepEqual(pauses(talk, off), []);
});

test('two speakers at once are one line, signs are none, and lines that touch are two', () => {
  near(pauses([cue(1000, 3000), cue(1800, 4000), cue(4010, 5000)]), [3995, 5000]);
  near(pauses([cue(1000, 4000), cue(1500, 2000)]), [4000]);
  near(pauses([cue(500, 9000, 'HOTEL'), cue(1000, 2000), cue(3000, 4000), cue(4000, 5000)]), [2000, 3985, 5000]);
  near(pauses([cue(1000, 2000), cue(1000, 2000)]), [2000]);
  near(pauses([cue(1000, 2010), cue(2000, 3000), cue(3000, 3000)]), [1985, 3000]);
});

test('only lines with an unknown word pause the film when so set', () => {
  const isHard = ({ lines }) => lines[0] === 'b' || lines[0] === 'd';
  near(pauses(talk, { ...pausing, hardOnly: true }, { isHard }), [4185, 10_500]);
  assert.deepEqual(pauses(talk, { ...pausing, hardOnly: true }), []);
});

test('a pause is not made again after late reports, small steps back or a new delay', () => {
  const all = [2000, 4185, 5000, 10_500];
  near(pauses(talk, pausing, { after: (sitting) => sitting.correct(-280) }), all);
  near(pauses(talk, pausing, { after: (sitting) => sitting.correct(-30) }), all);
  const long = [cue(1000, 4000), cue(6000, 9000)];
  const secondBack = (sitting) => sitting.seek(Math.round(sitting.position / secondMs) - 1);
  near(pauses(long, pausing, { after: secondBack }), [4000, 9000]);
  const later = long.map(({ startMs, endMs }) => cue(startMs + 100, endMs + 100));
  near(pauses(long, pausing, { after: (sitting) => { sitting.lines = new SpokenLines(later); } }), [4000, 9100]);
});

test('hearing the line again makes its pause again, and not that of the line before', () => {
  const sitting = new Sitting([cue(1000, 2400), cue(2500, 4000)], pausing).at(2410);
  sitting.run(5000);
  sitting.seek(2);
  sitting.playing = true;
  sitting.run(5000);
  near([sitting.position], [4000]);
  assert.equal(sitting.log.length, 2);
});

test('a stop that was slept through is left out, and the film never pauses in its last second', () => {
  const sitting = new Sitting(talk, pausing).at(1500);
  sitting.run(100);
  sitting.now += 1300;
  sitting.position += 1300;
  sitting.run(100);
  assert.deepEqual(sitting.log, []);
  const short = new Sitting([cue(1000, 2000), cue(4000, 5100)], pausing);
  short.durationMs = 5200;
  short.run(1500, false);
  short.run(4000);
  assert.equal(short.log.length, 1);
});

test('replay plays the line once more and pauses; on to the next end goes through the line before it', () => {
  const sitting = new Sitting(talk, off).at(3600);
  assert.equal(sitting.press('replayThenPause'), true);
  near([sitting.run(9000).position], [4185]);
  assert.equal(sitting.log[0], 'seek 3');
  assert.equal(sitting.press('replayThenPause'), true);
  near([sitting.run(9000).position], [4185]); // the line that was heard, though the next begins here
  sitting.press('playToNextEnd');
  near([sitting.run(9000).position], [5000]);
  sitting.settings = pausing;
  sitting.seek(3);
  sitting.press('playToNextEnd');
  near([sitting.run(9000).position], [5000]);
  sitting.seek(9);
  assert.equal(sitting.press('playToNextEnd'), false, 'there is none');
});

test('a loop comes back to its line without the words before it, and goes along to another', () => {
  const sitting = new Sitting([cue(1000, 2400), cue(2500, 4000), cue(9000, 9900)], off).at(3000);
  sitting.press('loopLine');
  sitting.run(7000);
  const others = sitting.heard.filter(([from, to]) => from < 2400 && to > 2000);
  assert.deepEqual(others, [], 'the end of the line before');
  assert.equal(sitting.log.filter((deed) => deed === 'seek 2').length, 4);
  assert.ok(sitting.heard.every(([from, to]) => to <= 4002 && from >= 2400));
  assert.equal(sitting.press('nextLine'), true);
  sitting.run(3000);
  near([sitting.heard[sitting.heard.length - 2][1]], [9900]);
  sitting.seek(1);
  sitting.run(3000);
  assert.equal(sitting.log[sitting.log.length - 1], 'seek 1');
  sitting.press('loopLine');
  sitting.run(3000);
  assert.ok(sitting.position > 3000);
  assert.equal(sitting.muted, false);
  assert.equal(sitting.press('nextLine'), false, 'steps are the film\'s again');
});

test('a loop goes back in time for a line that touches its own not to be heard, at every speed', () => {
  for (const speed of [0.5, 1, 2]) {
    const sitting = new Sitting([cue(1000, 2000), cue(2000, 3000)], off).at(1500);
    sitting.speed = speed;
    sitting.press('loopLine');
    sitting.run(5000);
    const ends = sitting.heard.slice(0, -1).map(([, to]) => to);
    assert.ok(ends.length > 1 && ends.every((to) => Math.abs(to - (1985 - 25 * speed)) <= 3), `${ends}`);
  }
});

test('a section repeats until it is cleared', () => {
  const sitting = new Sitting(talk, off).at(6300);
  sitting.press('loopSection');
  sitting.run(2000);
  sitting.press('loopSection');
  sitting.run(5000);
  assert.deepEqual(sitting.log, ['seek 6', 'seek 6', 'seek 6']);
  sitting.seek(12);
  sitting.run(500);
  sitting.seek(7);
  sitting.run(1500);
  assert.equal(sitting.log.length, 4, 'also for one who comes back');
  sitting.press('loopSection');
  sitting.run(5000);
  assert.equal(sitting.log.length, 4);
});

test('a drill gets faster, leaves time to speak, and goes on to the next line', () => {
  const settings = { ...off, rounds: 3, speeds: [0.7, 0.85, 1], gapPercent: 100, thenNext: true };
  const sitting = new Sitting(talk, settings).at(1500);
  sitting.speed = 1.2;
  sitting.press('drill');
  const speeds = [];
  for (let round = 0; round < 3; round += 1) {
    assert.equal(sitting.state.run.round, round);
    sitting.run(9000);
    near([sitting.position], [2000]);
    speeds.push(sitting.speed);
    const began = sitting.now;
    while (!sitting.playing) sitting.run(5, false);
    near([sitting.now - began], [1000], 10);
  }
  assert.deepEqual(speeds, [0.7, 0.85, 1]);
  assert.equal(sitting.state.run.place, 1);
  assert.equal(sitting.log.filter((deed) => deed.startsWith('seek')).length, 3, 'the next line is waited for');
  sitting.run(9000);
  sitting.playing = true; // the learner has spoken
  sitting.run(10);
  assert.equal(sitting.state.run.round, 1);
  assert.equal(sitting.press('replayLine'), true);
  assert.equal(sitting.state.run.round, 1, 'the same round again');
  sitting.press('drill');
  assert.equal(sitting.speed, 1.2);
});

test('the time to speak begins when the learner is done with a word, and not before', () => {
  const sitting = new Sitting(talk, { ...off, rounds: 3, gapPercent: 100 }).at(1500);
  sitting.press('drill');
  sitting.run(9000);
  sitting.run(600, false);
  sitting.isHeld = true;
  sitting.run(30_000, false);
  near([sitting.position], [2000]);
  assert.equal(sitting.state.run.round, 0);
  sitting.isHeld = false;
  const letGoAt = sitting.now;
  while (!sitting.playing) sitting.run(5, false);
  const waitedMs = sitting.now - letGoAt;
  assert.ok(waitedMs >= 1000 && waitedMs <= 1210, `${waitedMs}`);
  assert.equal(sitting.state.run.round, 1);
});

test('a drill whose rounds become fewer ends with the round that it is in', () => {
  const settings = { ...off, rounds: 5, gapPercent: 100, thenNext: false };
  const sitting = new Sitting(talk, settings).at(1500);
  sitting.speed = 1.3;
  sitting.press('drill');
  while (sitting.state.run.round < 3) sitting.run(50, false);
  sitting.settings = { ...settings, rounds: 2 };
  sitting.run(9000);
  assert.equal(sitting.heard.at(-1)[2], 1, 'the fastest step');
  assert.equal(sitting.state.run, null);
  near([sitting.position], [2000]);
});

test('a drill without a next line ends paused, and a speed that the learner sets in it stays', () => {
  const settings = { ...off, rounds: 2, gapPercent: 0, thenNext: false };
  const sitting = new Sitting(talk, settings).at(1500);
  sitting.press('drill');
  sitting.run(500);
  sitting.speed = 1.5;
  sitting.run(9000);
  assert.equal(sitting.state.run, null);
  assert.equal(sitting.playing, false);
  sitting.run(10, false);
  assert.equal(sitting.speed, 1.5);
  assert.equal(sitting.heard.some(([, , speed]) => speed === 1.5), true, 'nobody took it back within the round');
});

test('the steps of speed are spread over the rounds', () => {
  const of = (rounds, speeds) => Array.from({ length: rounds }, (_, i) => speedOf(i, { rounds, speeds }));
  assert.deepEqual(of(2, [0.7, 0.85, 1]), [0.7, 1]);
  assert.deepEqual(of(5, [0.7, 0.85, 1]), [0.7, 0.85, 0.85, 1, 1]);
  assert.deepEqual(of(1, [0.7, 1]), [1]);
  assert.deepEqual(of(3, [1]), [1, 1, 1]);
  assert.equal(speedOf(4, { rounds: 2, speeds: [0.7, 0.85, 1] }), 1, 'also when there were to be more rounds');
});

test('condensed playback jumps over long silences, where that gains time', () => {
  const cues = [cue(6000, 7000), cue(12_500, 13_000), cue(15_200, 16_000)];
  const sitting = new Sitting(cues, { ...off, condensed: true, condensedSeconds: 2 });
  sitting.run(12_000);
  assert.deepEqual(sitting.log, ['seek 5', 'seek 12'], 'the third line is too close for a seek to gain anything');
  near([sitting.heard[0][1]], [7300]);
  assert.ok(sitting.position > 16_000, 'and runs on after the last line');
  sitting.seek(9);
  sitting.run(300);
  assert.equal(sitting.log.length, 3, 'a silence ahead of a line left long ago is jumped over again');
  sitting.seek(10);
  sitting.run(1000);
  assert.equal(sitting.log.length, 3, 'not the one that the learner goes back into');
  sitting.seek(6);
  sitting.run(2000);
  assert.equal(sitting.log.length, 4);
});

test('fast gaps are fast, and no word is', () => {
  const cues = [cue(5000, 6000), cue(11_000, 12_000), cue(14_000, 15_000)];
  const sitting = new Sitting(cues, { ...off, fastGaps: true, fastGapSeconds: 3, fastGapSpeed: 2 });
  sitting.run(14_000);
  assert.deepEqual(sitting.log, ['speed 2', 'speed 1', 'speed 2', 'speed 1']);
  for (const [from, to, speed] of sitting.heard.filter((part) => part[2] === 2)) {
    assert.ok(cues.every(({ startMs, endMs }) => to <= startMs - 300 || from >= endMs + 300), `${from} ${to} ${speed}`);
  }
  sitting.seek(7);
  sitting.run(200);
  assert.equal(sitting.speed, 2);
  sitting.speed = 1.3; // by hand
  sitting.run(1000);
  assert.equal(sitting.speed, 1.3);
  sitting.seek(0);
  sitting.run(100);
  assert.equal(sitting.speed, 2);
  sitting.settings = off;
  sitting.run(100);
  assert.equal(sitting.speed, 1.3);
});

test('pauses and condensed playback go together', () => {
  const sitting = new Sitting([cue(1000, 2000), cue(9000, 10_000)], { ...pausing, condensed: true });
  sitting.run(9000);
  sitting.playing = true;
  sitting.run(9000);
  assert.deepEqual(sitting.log.map((deed) => deed.replace(/\d$/, '')), ['pause 200', 'seek ', 'pause 1000']);
});

test('without lines nothing is asked for in vain, and a delay moves what is running', () => {
  const empty = new Sitting([], { ...pausing, condensed: true, fastGaps: true });
  const requests = ['replayThenPause', 'playToNextEnd', 'loopLine', 'drill'];
  for (const request of requests) assert.equal(empty.press(request), false);
  empty.run(3000);
  assert.deepEqual(empty.log, []);
  const sitting = new Sitting(talk, off).at(1500);
  sitting.press('loopLine');
  sitting.lines = new SpokenLines(talk.map(({ startMs, endMs }) => cue(startMs + 2000, endMs + 2000)));
  sitting.run(9000);
  assert.equal(sitting.log.filter((deed) => deed === 'seek 3').length, 7);
});
