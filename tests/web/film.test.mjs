// SPDX-License-Identifier: GPL-3.0-or-later
import assert from 'node:assert/strict';
import { beforeEach, test } from 'node:test';

import { CueIndex } from '../../web/play/lines/cueindex.mjs';
import { Film } from '../../web/play/film/film.mjs';
import { PictureClick } from '../../web/play/bar/pictureclick.mjs';
import { timeText } from '../../web/shared/timetext.mjs';
import { FakeTimers } from './faketimers.mjs';

let clock;
let commands;
let film;

function runTo(time) {
  for (; clock < time; clock += 250) film.reported(clock);
}

beforeEach(() => {
  clock = 0;
  commands = [];
  film = new Film(
    { execute: (name, args) => commands.push(args ? `${name} ${Object.values(args)}` : name) },
    () => clock,
    () => {},
  );
  film.durationMs = 60_400;
});

test('a film starts playing, and the page\'s own commands are what changes that', () => {
  assert.equal(film.playing, true);
  film.togglePlay();
  film.togglePlay();
  assert.deepEqual(commands, ['Pause', 'Play']);
});

test('a pause that the player has left undone is told again', () => {
  film.setPlaying(false);
  clock += 250;
  film.reported(250); // on its way before the pause
  assert.deepEqual(commands, ['Pause']);
  clock += 600;
  film.reported(850);
  clock += 250;
  film.reported(1100);
  assert.deepEqual(commands, ['Pause', 'Pause']);
  film.setPlaying(true);
  clock += 2000;
  film.reported(1350);
  assert.deepEqual(commands, ['Pause', 'Pause', 'Play']);
});

test('seeks stay whole seconds inside the film', () => {
  runTo(2000);
  film.seekBy(-5);
  film.seekToSecond(30.9);
  film.seekToSecond(9999);
  assert.deepEqual(commands, ['SeekTo 0', 'SeekTo 30', 'SeekTo 59']);
});

test('line steps never seek past the beginning of the line', () => {
  film.stepBy(new CueIndex([{ startMs: 5999, endMs: 8000, lines: ['x'] }]));
  runTo(1000);
  film.stepLine(1);
  assert.deepEqual(commands, ['SeekTo 5']);
});

test('speed moves in tenths between half and double', () => {
  film.changeSpeed(-1);
  for (let i = 0; i < 20; i += 1) film.changeSpeed(-1);
  film.setSpeed(1);
  for (let i = 0; i < 20; i += 1) film.changeSpeed(1);
  assert.equal(commands[0], 'SetPlaybackSpeed 0.9');
  assert.ok(commands.includes('SetPlaybackSpeed 0.5'));
  assert.equal(commands.at(-1), 'SetPlaybackSpeed 2');
});

test('volume stays between 0 and 200, and turning it unmutes', () => {
  film.toggleMute();
  film.changeVolume(1);
  assert.equal(film.muted, false);
  film.setVolume(999);
  film.setVolume(-3);
  assert.deepEqual(commands, ['SetMuted true', 'SetVolume 105', 'SetVolume 200', 'SetVolume 0']);
});

test('the film is over when reports stop close to its end, not before', () => {
  runTo(60_250);
  assert.equal(film.ended, false);
  clock += 1000;
  assert.equal(film.ended, true);
  film.togglePlay();
  assert.deepEqual(commands, ['SeekTo 0', 'Play']);
  assert.equal(film.ended, false);
});

test('a film that stalls in its middle or is paused at its end is not over', () => {
  runTo(30_000);
  clock += 5000;
  assert.equal(film.ended, false);
  clock = 59_000;
  runTo(60_250);
  film.setPlaying(false);
  clock += 5000;
  assert.equal(film.ended, false);
});

test('a film that is told too long is over some seconds after it has fallen silent close to its end', () => {
  const endsAt = (lastMs, durationMs) => {
    film.durationMs = durationMs;
    film.seekToSecond(Math.floor(lastMs / 1000) - 1);
    clock += 2000;
    film.reported(lastMs);
    clock += 3900;
    assert.equal(film.ended, false);
    clock += 200;
    assert.equal(film.waiting, !film.ended);
    return film.ended;
  };
  assert.equal(endsAt(59_000, 60_400), true);
  assert.equal(endsAt(49_000, 60_400), false);
  assert.equal(endsAt(3_500_000, 3_600_000), false);
  assert.equal(endsAt(1_780_000, 1_800_000), true, 'of a long one somewhat earlier');
});

test('a film of unknown length that falls silent stands, and can be played on', () => {
  film.durationMs = null;
  runTo(30_000);
  assert.equal(film.stands, false);
  clock += 5000;
  assert.deepEqual([film.stands, film.ended, film.waiting], [true, false, false]);
  film.togglePlay();
  assert.deepEqual(commands, ['Play']);
  assert.equal(film.stands, false);
});

test('a pause in the last second goes back to where it ends nothing, and pauses when the film is there', () => {
  runTo(59_950);
  film.togglePlay();
  assert.deepEqual(commands, ['SeekTo 59']);
  assert.deepEqual([film.playing, film.positionMs], [false, 59_000]);
  film.reported(60_080); // on its way before
  assert.deepEqual(commands, ['SeekTo 59']);
  clock += 200;
  film.reported(59_030);
  assert.deepEqual(commands, ['SeekTo 59', 'Pause']);
  clock += 800;
  film.reported(60_100); // it has run on
  clock += 100;
  film.reported(59_100);
  assert.deepEqual(commands.slice(2), ['SeekTo 59', 'Pause']);
  film.togglePlay();
  assert.equal(commands.at(-1), 'Play');
  commands.length = 0;
  film.durationMs = 900; // all of it is its last second
  film.togglePlay();
  assert.deepEqual(commands, ['Pause']);
});

test('a film that falls silent while it should run is waited for, until it is heard of again', () => {
  const silentFor = (milliseconds) => { clock += milliseconds; return film.waiting; };
  assert.equal(silentFor(3900), false);
  assert.equal(silentFor(200), true, 'a film that is slow to begin');
  runTo(30_000);
  assert.equal(film.waiting, false);
  assert.equal(silentFor(3600), false);
  assert.equal(silentFor(400), true);
  film.setPlaying(false);
  assert.equal(silentFor(9000), false, 'a pause is no silence');
  film.setPlaying(true);
  assert.equal(silentFor(3900), false, 'and counts from its end');
  film.seekToSecond(40);
  assert.equal(silentFor(3900), false, 'as does a seek');
  assert.equal(silentFor(200), true);
  film.reported(40_100);
  assert.equal(film.waiting, false);
  film.durationMs = null;
  assert.equal(silentFor(9000), false, 'it may be over');
});

test('a film that is over is not waited for, and stays over when its speed is changed', () => {
  runTo(60_250);
  for (const direction of [0, 1, -1, -1]) {
    film.changeSpeed(direction);
    clock += 9000;
    assert.equal(film.ended, true);
    assert.equal(film.waiting, false);
  }
});

test('a click waits for a double-click, and one that led to full screen is taken back', (context) => {
  const timers = new FakeTimers(context);
  let toggles = 0;
  const click = new PictureClick(() => { toggles += 1; }, () => timers.now);
  click.clicked();
  timers.pass(260);
  assert.equal(toggles, 1);
  timers.pass(2000);
  click.clicked();
  timers.pass(100);
  click.screenChanged(); // the quick double-click: nothing has happened yet
  timers.pass(1000);
  assert.equal(toggles, 1);
  click.clicked();
  timers.pass(350);
  click.screenChanged(); // the slow one: it had
  assert.equal(toggles, 3);
  timers.pass(2000);
  click.screenChanged();
  assert.equal(toggles, 3);
  click.clicked();
  timers.pass(500);
  assert.equal(toggles, 4);
  click.clicked();
  timers.pass(100);
  click.screenChanged(); // a double-click soon after a click of its own
  timers.pass(1000);
  assert.equal(toggles, 4);
});

test('times read as on a clock', () => {
  assert.deepEqual([0, 59_999, 60_000, 3_661_000, -5].map(timeText), ['0:00', '0:59', '1:00', '1:01:01', '0:00']);
});
