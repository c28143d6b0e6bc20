// SPDX-License-Identifier: GPL-3.0-or-later
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { PlaybackClock } from '../../web/play/film/clock.mjs';

/** Reports every 250 ms, each late by what lateness says, from film time start at clock time 0. */
function playing({ start = 10_000, reports = 8, speed = 1, lateness = () => 0 } = {}) {
  const clock = new PlaybackClock();
  clock.setSpeed(speed, 0);
  for (let i = 0; i < reports; i += 1) clock.report(start + i * 250 * speed, i * 250 + lateness(i));
  return { clock, lastAt: (reports - 1) * 250 };
}

test('there is no position before the first report', () => {
  const clock = new PlaybackClock();
  assert.equal(clock.position(500), null);
  assert.equal(clock.moves(500), false);
});

test('the position runs on between reports at the film\'s speed', () => {
  for (const speed of [0.5, 1, 2]) {
    const { clock, lastAt } = playing({ speed });
    assert.ok(Math.abs(clock.position(lastAt + 200) - (10_000 + (lastAt + 200) * speed)) < 1, `speed ${speed}`);
  }
});

test('one late report does not pull the position back', () => {
  const { clock, lastAt } = playing({ lateness: (i) => (i === 6 ? 120 : 0) });
  assert.ok(Math.abs(clock.position(lastAt + 100) - (10_000 + lastAt + 100)) < 1);
});

test('the position never runs backwards while reports wander', () => {
  const clock = new PlaybackClock();
  const wander = [0, 60, -70, 20, -40, 90, -90, 10];
  let before = -Infinity;
  for (let now = 0; now < 2000; now += 10) {
    if (now % 250 === 0) clock.report(5000 + now + wander[now / 250], now);
    const position = clock.position(now);
    assert.ok(position >= before, `at ${now}: ${position} after ${before}`);
    before = position;
  }
});

test('the film stands when reports stop, and goes on with them', () => {
  const { clock, lastAt } = playing();
  const stood = clock.position(lastAt + 5000);
  assert.ok(stood <= 10_000 + lastAt + 701);
  assert.equal(clock.stalled(lastAt + 5000), true);
  assert.equal(clock.moves(lastAt + 5000), false);
  clock.report(10_000 + lastAt + 900, lastAt + 6000);
  assert.ok(Math.abs(clock.position(lastAt + 6100) - (10_000 + lastAt + 1000)) < 1);
});

test('a pause holds the position against late reports, and playing goes on from there', () => {
  const { clock, lastAt } = playing();
  clock.setRunning(false, lastAt + 100);
  const held = clock.position(lastAt + 100);
  clock.report(held - 90, lastAt + 120);
  assert.equal(clock.position(lastAt + 9000), held);
  clock.setRunning(true, lastAt + 9000);
  assert.ok(Math.abs(clock.position(lastAt + 9100) - (held + 100)) < 1);
});

test('a report of another place while paused moves the film there', () => {
  const { clock, lastAt } = playing();
  clock.setRunning(false, lastAt);
  clock.report(40_000, lastAt + 300);
  assert.equal(clock.position(lastAt + 400), 40_000);
});

test('a seek counts at once and reports of the old place are passed over', () => {
  const { clock, lastAt } = playing();
  clock.seek(11_000, lastAt + 10);
  clock.report(10_000 + lastAt + 250, lastAt + 30); // only 0.9 s away, and still the old place
  assert.equal(clock.position(lastAt + 40), 11_000);
  assert.equal(clock.moves(lastAt + 40), false);
  clock.report(11_020, lastAt + 200);
  assert.ok(Math.abs(clock.position(lastAt + 300) - 11_120) < 1);
});

test('a seek that ends elsewhere is believed after a while', () => {
  const { clock, lastAt } = playing();
  clock.seek(60_000, lastAt);
  clock.report(57_000, lastAt + 500);
  assert.equal(clock.position(lastAt + 600), 60_000);
  clock.report(58_100, lastAt + 1600);
  assert.ok(Math.abs(clock.position(lastAt + 1700) - 58_200) < 1);
});

test('a seek while paused shows the new place', () => {
  const { clock, lastAt } = playing();
  clock.setRunning(false, lastAt);
  clock.seek(30_000, lastAt + 10);
  assert.equal(clock.position(lastAt + 20), 30_000);
  clock.setRunning(true, lastAt + 50);
  clock.report(30_010, lastAt + 150);
  assert.ok(Math.abs(clock.position(lastAt + 250) - 30_110) < 1);
});

test('a change of speed does not move the position', () => {
  const { clock, lastAt } = playing();
  const before = clock.position(lastAt + 100);
  clock.setSpeed(2, lastAt + 100);
  assert.ok(Math.abs(clock.position(lastAt + 100) - before) < 1);
  assert.ok(Math.abs(clock.position(lastAt + 200) - (before + 200)) < 1);
});

test('a change of speed does not set a film that stands in motion', () => {
  const { clock, lastAt } = playing();
  const end = clock.position(lastAt + 5000);
  for (const [i, speed] of [1.5, 2, 0.5].entries()) {
    clock.setSpeed(speed, lastAt + 6000 + i * 1000);
    assert.equal(clock.position(lastAt + 6900 + i * 1000), end);
    assert.equal(clock.stalled(lastAt + 6900 + i * 1000), true);
  }
  clock.report(end + 50, lastAt + 9000);
  assert.ok(Math.abs(clock.position(lastAt + 9100) - (end + 100)) < 1, 'and it goes on at its new speed');
});

test('reports that come very late do not move the film, several in a row do', () => {
  const { clock, lastAt } = playing();
  for (const [i, late] of [600, 450].entries()) {
    clock.report(10_000 + lastAt + 250 * (i + 1) - late, lastAt + 250 * (i + 1));
    assert.ok(Math.abs(clock.position(lastAt + 250 * (i + 1)) - (10_000 + lastAt + 250 * (i + 1))) < 1);
  }
  clock.report(10_000 + lastAt + 250, lastAt + 750); // the film has stood for half a second
  assert.ok(Math.abs(clock.position(lastAt + 800) - (10_000 + lastAt + 300)) < 1);
});

test('half of the reports may be late, and one early, without moving the position', () => {
  for (const wander of [[0, -90, 0, -40, -120, 0, -5, 0], [0, 0, 60, -30, 0, 0, -80, 0]]) {
    const { clock, lastAt } = playing({ lateness: (i) => -wander[i] });
    const off = clock.position(lastAt + 100) - (10_000 + lastAt + 100);
    assert.ok(Math.abs(off) <= 5, `${off}`);
  }
});

test('a film that begins late after a pause is not ahead of itself for long', () => {
  const { clock, lastAt } = playing();
  clock.setRunning(false, lastAt, 12_000);
  assert.equal(clock.position(lastAt + 10), 12_000, 'it is known better where it stands');
  clock.setRunning(true, lastAt + 1000);
  for (let i = 1; i < 4; i += 1) clock.report(12_000 + 250 * i - 120, lastAt + 1000 + 250 * i);
  assert.ok(Math.abs(clock.position(lastAt + 1900) - (12_900 - 120)) < 1);
});
