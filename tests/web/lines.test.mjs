// SPDX-License-Identifier: GPL-3.0-or-later
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { CueIndex } from '../../web/play/lines/cueindex.mjs';
import { Film } from '../../web/play/film/film.mjs';
import { LineSteps, secondsBefore } from '../../web/play/lines/linesteps.mjs';
import { LinesDriver } from '../../web/play/lines/linesdriver.mjs';
import { LinesView } from '../../web/play/lines/linesview.mjs';
import { FakeTimers } from './faketimers.mjs';

const cue = (startMs, endMs, ...lines) => ({ startMs, endMs, lines });
const texts = (cues) => cues.map(({ lines }) => lines.join('|'));

const index = new CueIndex([
  cue(1000, 9000, 'sign'),
  cue(2000, 3000, 'one'),
  cue(2500, 4000, 'two'),
  cue(4000, 5000, 'three'),
  cue(12_000, 13_000, 'last'),
]);

test('every cue that has begun and not ended shows, also long ones under short ones', () => {
  assert.deepEqual(texts(index.at(999)), []);
  assert.deepEqual(texts(index.at(2000)), ['sign', 'one']);
  assert.deepEqual(texts(index.at(2700)), ['sign', 'one', 'two']);
  assert.deepEqual(texts(index.at(3999)), ['sign', 'two']);
  assert.deepEqual(texts(index.at(8999)), ['sign']);
  assert.deepEqual(texts(index.at(9000)), []);
});

test('the next change is where the answer becomes another, at every millisecond', () => {
  for (let time = 0; time < 13_500; time += 1) {
    const now = texts(index.at(time)).join();
    const change = index.nextChange(time);
    assert.ok(change > time);
    assert.equal(texts(index.at(Math.min(change, 13_500) - 1)).join(), now);
    if (change !== Infinity) assert.notEqual(texts(index.at(change)).join(), now);
  }
  assert.equal(index.nextChange(13_000), Infinity);
});

test('of too many cues at a time eight show, and signs give way to speech', () => {
  const signs = Array.from({ length: 30 }, (_, i) => cue(i * 10, 20_000, `sign ${i}`));
  const crowd = new CueIndex([...signs, cue(1000, 2000, 'said'), cue(19_000, 25_000, 'said late')]);
  for (const time of [0, 70, 80, 1500, 2500, 19_500]) {
    const showing = texts(crowd.at(time));
    assert.ok(showing.length <= 8 && showing.includes('sign 0'), `${showing}`);
    assert.equal(showing.includes('said'), time === 1500);
    assert.deepEqual(texts(crowd.at(crowd.nextChange(time) - 1)), showing);
  }
  assert.equal(crowd.cues.length, 32);
  assert.equal(crowd.lastStarted(1000), 30, 'places are those in the whole track');
});

test('an empty track has no lines and no change', () => {
  const empty = new CueIndex([]);
  assert.deepEqual(empty.at(5), []);
  assert.equal(empty.nextChange(5), Infinity);
  assert.equal(new LineSteps(empty).jump(1, 5), null);
});

test('steps go through every line although a jump lands within the line before', () => {
  const close = new CueIndex([cue(1200, 1900, 'a'), cue(2300, 2700, 'b'), cue(2800, 3500, 'c'), cue(3900, 5000, 'd')]);
  const steps = new LineSteps(close);
  const landed = (found) => secondsBefore(found.startMs) * 1000;
  let time = 0;
  const forward = [];
  for (let found = steps.jump(1, time); found; found = steps.jump(1, time)) {
    forward.push(...found.lines);
    time = landed(found) + 30;
  }
  assert.deepEqual(forward, ['a', 'b', 'c', 'd']);
  const back = [];
  for (let i = 0; i < 3; i += 1) {
    const found = steps.jump(-1, time);
    back.push(...found.lines);
    time = landed(found) + 30;
  }
  assert.deepEqual(back, ['c', 'b', 'a']);
  assert.deepEqual(steps.jump(-1, time).lines, ['a']);
});

test('replay repeats the line that is heard, or the one just over', () => {
  const steps = new LineSteps(index);
  assert.deepEqual(steps.jump(0, 2600).lines, ['two']);
  assert.deepEqual(steps.jump(0, 11_000).lines, ['three']);
  assert.equal(steps.jump(0, 500), null);
});

test('what waits before the line that it was sent to tells when that begins', () => {
  const steps = new LineSteps(new CueIndex([cue(1200, 1900, 'a'), cue(2700, 3500, 'b')]));
  assert.equal(steps.startAhead(1100), null, 'sent nowhere');
  steps.goTo(1);
  assert.deepEqual([1980, 2000, 2699, 2700].map((time) => steps.startAhead(time)), [2700, 2700, 2700, null]);
  steps.goTo(1);
  assert.equal(steps.startAhead(1000), null, 'elsewhere');
});

test('the line asked for is forgotten once the film is elsewhere', () => {
  const steps = new LineSteps(index);
  steps.jump(1, 6000);
  assert.deepEqual(steps.jump(0, 4100).lines, ['three']);
});

test('a line appears at its time and nothing is drawn in between', (context) => {
  const timers = new FakeTimers(context);
  const drawn = [];
  const ownerDocument = { createElement: () => ({ setAttribute() {}, append(...parts) { this.text = parts.map((part) => part.text ?? part).join(''); } }) };
  const element = {
    ownerDocument,
    replaceChildren(...lines) { drawn.push([timers.now, lines.map(({ text }) => text).join('|')]); },
  };
  const film = new Film({ execute() {} }, () => timers.now, () => driver.update());
  const driver = new LinesDriver(film, () => timers.now);
  const track = new CueIndex([cue(1100, 1600, 'A', 'B'), cue(1700, 2000, 'C')]);
  driver.setTracks([{ index: track, view: new LinesView(element) }]);
  for (let i = 0; i < 9; i += 1) {
    film.reported(i * 250);
    timers.pass(250);
  }
  assert.deepEqual(drawn.map(([, text]) => text), ['A|B', '', 'C', '']);
  const lateness = drawn.map(([at], i) => at - [1100, 1600, 1700, 2000][i]);
  assert.ok(lateness.every((late) => late >= 0 && late <= 2), `late by ${lateness}`);
  film.setPlaying(false);
  timers.pass(3000);
  assert.equal(drawn.length, 4);
  film.stepBy(track);
  film.goToLine(1); // a second's beginning, within the line before
  driver.update();
  assert.deepEqual(drawn.slice(4).map(([, text]) => text), ['C'], 'the line that the film waits before');
});
