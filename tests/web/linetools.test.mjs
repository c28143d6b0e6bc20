// SPDX-License-Identifier: GPL-3.0-or-later
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { playDefaults } from '../../web/play/defaults.mjs';
import { Film } from '../../web/play/film/film.mjs';
import { CueIndex } from '../../web/play/lines/cueindex.mjs';
import { LinesDriver } from '../../web/play/lines/linesdriver.mjs';
import { LineTools } from '../../web/play/practice/linetools.mjs';
import { marksOf } from '../../web/play/practice/practicemarks.mjs';
import { stepped } from '../../web/play/practice/practicepanel.mjs';
import { FakeTimers } from './faketimers.mjs';

const cue = (startMs, endMs) => ({ startMs, endMs, lines: [] });

/** A real film model and real tools over a player that obeys and reports every 250 ms, 20 ms late. */
function sitting(context, cues, settings) {
  const timers = new FakeTimers(context);
  const { practice } = playDefaults;
  const preferences = { values: { ...practice, ...settings }, get() { return this.values; }, onChange() {} };
  const made = { timers, preferences, commands: [], position: 0, playing: true, speed: 1, changes: 0 };
  const obey = (name, args = {}) => {
    made.commands.push([name, ...Object.values(args), Math.round(made.position)].join(' '));
    if (name === 'Pause' || name === 'Play') made.playing = name === 'Play';
    if (name === 'SeekTo') made.position = args.position * 1000;
    if (name === 'SetPlaybackSpeed') made.speed = args.speed;
    assert.ok(made.commands.length < 200, 'the tools do not stop');
  };
  made.film = new Film({ execute: obey }, () => timers.now, () => made.tools?.update());
  made.tools = new LineTools(made.film, preferences, () => timers.now, {
    say() {}, changed: () => { made.changes += 1; },
  });
  made.tools.load(cues, 1);
  made.run = (milliseconds) => {
    for (let i = 0; i < milliseconds; i += 5) {
      if (made.playing && timers.now % 250 === 20) made.film.reported(Math.round(made.position) - 20 * made.speed);
      timers.pass(5);
      if (made.playing) made.position += 5 * made.speed;
    }
  };
  return made;
}

test('the pause is commanded ahead of the line\'s end, and the line stays in sight', (context) => {
  const made = sitting(context, [cue(1000, 2000), cue(2000, 4000)], { autoPause: true });
  made.run(3000);
  assert.equal(made.commands.length, 1);
  const at = Number(made.commands[0].split(' ')[1]);
  // 15 ms of guard and some for the command before the end, 20 after it for the late reports.
  assert.ok(at >= 1985 && at <= 2000, `${at}`);
  assert.equal(made.film.positionMs, 1984);
  made.film.setPlaying(true);
  made.run(1000);
  assert.equal(made.commands.length, 2, 'and the film goes on');
});

test('a loop silences what is said before its line, and gives the sound back to who had it', (context) => {
  const made = sitting(context, [cue(500, 2700), cue(2750, 3500)], {});
  made.run(3000);
  made.tools.ask('loopLine');
  made.run(2500);
  const muting = made.commands.flatMap((command) => /SetMuted (\w+)/.exec(command)?.[1] ?? []);
  assert.deepEqual(muting.slice(0, 4), ['true', 'false', 'true', 'false']);
  made.film.toggleMute();
  const before = made.commands.length;
  made.run(2500);
  assert.equal(made.commands.slice(before).some((command) => command.startsWith('SetMuted')), false);
  assert.equal(made.changes, 1, 'nobody is told of what stays the same');
});

test('the learner\'s speed is known while a tool plays at another, and can be set beneath it', (context) => {
  const made = sitting(context, [cue(9000, 10_000)], { fastGaps: true, fastGapSpeed: 2 });
  made.run(1000);
  assert.deepEqual([made.film.speed, made.tools.ownSpeed], [2, 1]);
  made.tools.ownSpeed = 0.8;
  assert.deepEqual([made.film.speed, made.tools.ownSpeed], [2, 0.8]);
  made.run(7000);
  assert.deepEqual([made.film.speed, made.tools.ownSpeed], [0.8, 0.8]);
  assert.equal(made.commands.length, 2, 'once to and once fro');
  made.tools.ownSpeed = 1.3;
  assert.deepEqual([made.film.speed, made.tools.ownSpeed], [1.3, 1.3]);
});

test('another track ends what went by the lines of the one before', (context) => {
  const made = sitting(context, [cue(1000, 2000)], {});
  made.run(1500);
  made.tools.ask('loopLine');
  made.tools.load([cue(1000, 1900)], 2);
  made.run(4000);
  assert.equal(made.commands.filter((command) => command.startsWith('SeekTo')).length, 1);
});

test('a line that is weeks away is waited for no longer at a time than timers can', (context) => {
  const made = sitting(context, [cue(3e9, 3e9 + 1000)], { autoPause: true });
  made.film.durationMs = 4e9;
  const driver = new LinesDriver(made.film, () => made.timers.now);
  driver.setTracks([{ index: new CueIndex([cue(3e9, 3e9 + 1000)]), view: { show() {} } }]);
  made.run(500);
  driver.update();
  assert.equal(made.timers.longestDelay, 60_000);
});

test('marks tell of all that is on', () => {
  const settings = { ...playDefaults.practice, autoPause: true, hardOnly: true, fastGaps: true };
  const drill = { kind: 'drill', place: 4, round: 1, isWaiting: false };
  const section = { fromMs: 5, toMs: null };
  const marks = marksOf({ run: drill, section, settings });
  assert.deepEqual(marks.map(({ action }) => action), ['drill', 'loopSection', 'autoPause', 'fastGaps']);
  assert.equal(marks[0].text, '2 of 3 · 0.85×');
  assert.equal(marksOf({ run: { ...drill, round: 7 }, section, settings })[0].text, '3 of 3 · 1.0×');
  assert.equal(marksOf({ run: { ...drill, isWaiting: true }, section: null, settings })[0].text, 'Your turn');
  assert.deepEqual(marksOf({ run: null, section: null, settings: playDefaults.practice }), []);
});

test('steppers go through their choices, and from any other value to the nearest', () => {
  assert.equal(stepped([1, 2, 4], 2, 1), 4);
  assert.equal(stepped([1, 2, 4], 4, 1), 4);
  assert.equal(stepped([1, 2, 4], 3, -1), 2);
  assert.equal(stepped([1, 2, 4], 3, 1), 4);
  assert.equal(stepped([1, 2, 4], 9, -1), 4);
  assert.deepEqual(stepped([[0.5, 1], [0.7, 1]], [0.5, 1], 1), [0.7, 1]);
});
