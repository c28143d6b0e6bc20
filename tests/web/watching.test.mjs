// SPDX-License-Identifier: GPL-3.0-or-later
import assert from 'node:assert/strict';
import { beforeEach, test } from 'node:test';

import { Film } from '../../web/play/film/film.mjs';
import { SavedVolume } from '../../web/play/film/savedvolume.mjs';
import { Watching, isOver, placeToOffer } from '../../web/play/film/watching.mjs';
import { leavePlace, takePlace } from '../../web/shared/askedplace.mjs';
import { FakeTimers } from './faketimers.mjs';

const hour = 3_600_000;
let clock;
let film;
let tools;
let watching;
let kept;
let saved;
let offers;
let asked; // the place that the home page has left

beforeEach(() => {
  clock = 0;
  saved = [];
  offers = [];
  asked = null;
  kept = { positionMs: 0, durationMs: 0, speedPercent: 100, audioTrackId: null, isFinished: false };
  film = new Film({ execute: () => {} }, () => clock, () => watching.update());
  film.durationMs = hour;
  tools = {
    get ownSpeed() { return film.speed; },
    set ownSpeed(speed) { film.setSpeed(speed); },
  };
  const api = { watching: async () => kept, changeWatching: async (_, state) => { saved.push(state); } };
  watching = new Watching(api, 7, film, () => clock, {
    show: (positionMs) => offers.push(positionMs),
    hide: () => { offers.push('hidden'); watching.settled(); },
    asked: () => asked,
  }, tools);
});

function run(seconds) {
  const start = film.positionMs ?? 0;
  for (let i = 0; i < seconds * 4; i += 1, clock += 250) film.reported(start + i * 250 * film.speed);
}

test('a film is offered to be gone on with where it was left in its middle, and only there', () => {
  const at = (positionMs, more = {}) => placeToOffer({ ...kept, positionMs, durationMs: hour, ...more }, 400);
  assert.deepEqual([0, 29_000, 30_000, hour / 2, hour - 60_001, hour - 60_000].map((ms) => at(ms)),
    [null, null, 30_000, hour / 2, hour - 60_001, null]);
  assert.equal(at(hour / 2, { isFinished: true }), null);
  assert.equal(at(hour / 2, { durationMs: 0 }), hour / 2, 'a length that nobody knows has no end');
  assert.equal(placeToOffer({ ...kept, positionMs: hour / 2, durationMs: hour }, 31_000), null, 'only the page is new');
  assert.equal(isOver(67_000, 70_000), true, 'of a short film five per cent');
  assert.equal(isOver(66_000, 70_000), false);
});

test('a film that was asked for at a place begins there, and nothing is offered', async () => {
  kept = { ...kept, positionMs: hour / 2, durationMs: hour };
  asked = 125_900;
  await watching.load();
  run(0.25);
  assert.equal(film.positionMs, 125_000);
  assert.deepEqual(offers, []);
});

test('a place on its way to the player is for one film, soon, and once', () => {
  const kept = new Map();
  const storage = { getItem: (name) => kept.get(name) ?? null, setItem: (name, text) => kept.set(name, text), removeItem: (name) => kept.delete(name) };
  const taken = (videoId, nowMs) => takePlace(storage, videoId, nowMs);
  const leave = () => leavePlace(storage, 7, 5000, 1_000_000);
  assert.equal(taken(7, 0), null);
  leave();
  assert.deepEqual([taken(7, 1_030_000), taken(7, 1_030_000)], [5000, null]);
  leave();
  assert.deepEqual([taken(8, 1_030_000), taken(7, 1_030_000)], [null, null]);
  for (const nowMs of [999_000, 1_120_000]) {
    leave();
    assert.equal(taken(7, nowMs), null);
  }
  for (const text of ['', '{', 'null', '{"videoId":7,"leftAtMs":0}', '{"videoId":7,"positionMs":"x","leftAtMs":0}']) {
    storage.setItem('askedPlace', text);
    assert.equal(taken(7, 1), null, text);
  }
});

test('the place is kept every five seconds, at a pause and when the page goes, and not twice', async () => {
  await watching.load();
  run(11);
  assert.deepEqual(saved.map(({ positionMs }) => positionMs), [5000, 10_000]);
  film.setPlaying(false);
  assert.equal(saved.length, 3);
  assert.deepEqual({ ...saved[2], positionMs: 0 }, { positionMs: 0, durationMs: hour, speedPercent: 100, isFinished: false });
  clock += 60_000;
  watching.update();
  watching.saveNow();
  assert.equal(saved.length, 3);
  film.seekToSecond(3599);
  watching.saveNow();
  assert.equal(saved.at(-1).isFinished, true);
});

test('while the offer stands the old place is safe, and the film comes back with its speed', async () => {
  Object.assign(kept, { positionMs: 1_421_000, durationMs: hour, speedPercent: 80, audioTrackId: 2 });
  await watching.load();
  run(9);
  watching.saveNow();
  assert.deepEqual(offers, [1_421_000]);
  assert.equal(film.speed, 0.8);
  assert.deepEqual(saved, []);
  film.seekToSecond(1421); // as the card does
  watching.settled();
  run(6);
  assert.ok(saved[0].positionMs > 1_421_000);
  assert.equal(saved[0].speedPercent, 80);
});

test('a learner who moves the film has settled the offer', async () => {
  Object.assign(kept, { positionMs: 1_421_000, durationMs: hour });
  await watching.load();
  run(3);
  film.seekToSecond(600);
  run(1);
  assert.deepEqual(offers, [1_421_000, 'hidden']);
  run(6);
  assert.equal(saved.length, 1);
});

test('what nobody has answered yet is not overwritten, and is asked for until it comes', async (context) => {
  const timers = new FakeTimers(context);
  const warnings = context.mock.method(console, 'warn', () => {});
  Object.assign(kept, { positionMs: 1_421_000, durationMs: hour });
  let fails = 3;
  const api = {
    watching: async () => { if ((fails -= 1) >= 0) throw new Error('There is nothing here.'); return kept; },
    changeWatching: async (_, state) => { saved.push(state); throw new Error('There is nothing here.'); },
  };
  watching = new Watching(api, 7, film, () => clock, { show: (positionMs) => offers.push(positionMs), hide() {}, asked: () => null }, tools);
  assert.equal((await watching.load()).positionMs, 0);
  run(11);
  watching.saveNow();
  assert.deepEqual(saved, []);
  for (let i = 0; i < 3; i += 1) {
    timers.pass(4000);
    await new Promise(setImmediate);
  }
  assert.deepEqual(offers, [1_421_000]);
  watching.settled();
  for (let i = 0; i < 3; i += 1) {
    run(6);
    await new Promise(setImmediate);
  }
  assert.equal(saved.length, 3, 'a place that could not be kept is kept later');
  assert.equal(warnings.mock.callCount(), 1, 'and is told of once');
});

test('the saved volume comes back, but not over what the learner has set meanwhile', async (context) => {
  const timers = new FakeTimers(context);
  const sitting = () => {
    const made = { commands: [], kept: [] };
    made.film = new Film({ execute: (name, args) => made.commands.push([name, ...Object.values(args)].join(' ')) },
      () => clock, () => made.volume?.update());
    made.volume = new SavedVolume(made.film, {
      settings: async () => ({ volumePercent: 60 }),
      changeSettings: async (changes) => { made.kept.push(changes.volumePercent); },
    });
    return made;
  };
  const quiet = sitting();
  await quiet.volume.load();
  quiet.volume.playerReady();
  assert.deepEqual(quiet.commands, ['SetVolume 60', 'SetVolume 60']);

  const muted = sitting();
  const load = muted.volume.load();
  muted.film.toggleMute();
  await load;
  muted.volume.playerReady();
  assert.deepEqual(muted.commands, ['SetMuted true']);
  muted.film.toggleMute();
  assert.deepEqual(muted.commands.slice(1), ['SetMuted false', 'SetVolume 60']);

  const louder = sitting();
  const other = louder.volume.load();
  louder.film.changeVolume(1);
  await other;
  assert.equal(louder.film.volumePercent, 105);
  timers.pass(1000);
  louder.film.changeVolume(1);
  louder.volume.saveNow();
  timers.pass(1000);
  assert.deepEqual(louder.kept, [105, 110], 'each once');
});
