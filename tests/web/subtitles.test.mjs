// SPDX-License-Identifier: GPL-3.0-or-later
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { fitText } from '../../web/play/panels/filmfit.mjs';
import { firstAround } from '../../web/play/panels/linepicker.mjs';
import { noticeOf } from '../../web/play/bar/notice.mjs';
import { runsOf } from '../../web/play/lines/runs.mjs';
import { Subtitles, trackDetails } from '../../web/play/lines/subtitles.mjs';
import {
  filmTime, frameRates, isSameRate, offsetText, retimed, shifted, startingAt, timingText, unmoved, withRate,
} from '../../web/play/lines/timing.mjs';
import { TimingKeys } from '../../web/play/lines/timingkeys.mjs';

const cue = (startMs, endMs, ...lines) => ({ startMs, endMs, lines });
const [ntscFilm, film, pal] = frameRates;

test('a timing turns by its rate, moves by its offset, and by more after the cut', () => {
  const timing = { offsetMs: 500, rateNumerator: 25, rateDenominator: 24, cut: { atMs: 48_000, offsetMs: -2000 } };
  assert.equal(filmTime(24_000, timing), 25_500);
  assert.equal(filmTime(47_999, timing), 50_499);
  assert.equal(filmTime(48_000, timing), 48_500);
  const moved = retimed([cue(47_000, 49_000, 'across'), cue(48_000, 48_960, 'after')], timing);
  assert.deepEqual(moved.map(({ startMs, endMs, lines }) => [startMs, endMs, lines[0]]),
    [[48_500, 49_500, 'after'], [49_458, 51_541, 'across']]);
});

test('a picked line begins at the moment it was picked for, whatever moved it before', () => {
  const line = cue(60_000, 61_000, 'x');
  for (const timing of [unmoved, shifted(unmoved, -700), withRate(unmoved, pal, film, 30_000)]) {
    assert.equal(filmTime(line.startMs, startingAt(timing, line, 71_234.4)), 71_234);
  }
});

test('another frame rate leaves the place where the film is, and is known again', () => {
  assert.equal(filmTime(0, withRate(unmoved, pal, ntscFilm, 600_000)), 0, 'what was not moved fits at the beginning');
  const cut = { ...unmoved, cut: { atMs: 300_000, offsetMs: 60_000 } };
  assert.ok(Math.abs(filmTime(540_000, withRate(cut, pal, ntscFilm, 600_000)) - 600_000) <= 1);
  const timing = withRate(shifted(unmoved, 3000), pal, ntscFilm, 600_000);
  assert.ok(Math.abs(filmTime(597_000, timing) - 600_000) <= 1);
  assert.ok(isSameRate(timing, pal, ntscFilm));
  assert.ok(!isSameRate(timing, pal, film));
  assert.deepEqual([timing.rateNumerator, timing.rateDenominator], [1001, 960]);
});

test('timings are told in words', () => {
  assert.equal(offsetText(0), 'as it is');
  assert.equal(offsetText(-1200), '1.2 s earlier');
  assert.equal(offsetText(1234), '1.23 s later');
  assert.equal(timingText({ ...unmoved, rateNumerator: 25, rateDenominator: 24, cut: { atMs: 1, offsetMs: 300 } }),
    'as it is, 104.17 % as long, 0.3 s later after a cut');
  assert.match(fitText({ timing: null }), /^No place was found/);
  assert.match(fitText({ timing: unmoved, isSure: false, surePercent: 3 }), /^No place was found/);
  assert.match(fitText({ timing: unmoved, isSure: false, surePercent: 40 }), /^Perhaps as it is, by the sound/);
});

test('runs of slanted text cover each line once, also where ranges lie badly', () => {
  assert.deepEqual(runsOf({ lines: ['a bcd', 'e'], italics: [{ line: 0, start: 2, end: 4 }] }), [
    [{ text: 'a ', isItalic: false }, { text: 'bc', isItalic: true }, { text: 'd', isItalic: false }],
    [{ text: 'e', isItalic: false }],
  ]);
  const wild = { lines: ['abc'], italics: [{ line: 0, start: 1, end: 99 }, { line: 0, start: 0, end: 2 }, { line: 5, start: 0, end: 1 }] };
  assert.equal(runsOf(wild)[0].map(({ text }) => text).join(''), 'abc');
});

test('the lines to pick from lie around the moment', () => {
  const cues = Array.from({ length: 30 }, (_, i) => cue(i * 1000, i * 1000 + 500, String(i)));
  assert.equal(firstAround(cues, unmoved, 15_500), 12);
  assert.equal(firstAround(cues, shifted(unmoved, 5000), 15_500), 7);
  assert.equal(firstAround(cues, unmoved, -1), 0);
  assert.equal(firstAround(cues, unmoved, 90_000), 21);
  assert.equal(firstAround(cues.slice(0, 3), unmoved, 90_000), 0);
});

/** A service of one film; its replies are as it was told, what it is asked is kept. */
class FakeService {
  asked = [];
  changes = [{ revision: 0, isReadingFilm: false, readPercent: 0 }];
  reply = { fileName: 'Film.mkv', tracks: [], learned: null, native: null };

  async filmChanges(_, after) {
    this.asked.push(`changes ${after}`);
    const next = this.changes.shift();
    if (next instanceof Error) throw next;
    return next;
  }

  async filmLines() {
    this.asked.push('lines');
    return structuredClone(this.reply);
  }

  async chooseLines(_, lines) { this.asked.push(`choose ${JSON.stringify(lines)}`); }
  async setTiming(id, { offsetMs }) { this.asked.push(`timing ${id} ${offsetMs}`); }
  async addSubtitle(_, { name }) { return { subtitleId: 9, language: name }; }
}

const track = (subtitleId, rest = {}) => ({ subtitleId, source: 'beside', isThere: true, timing: unmoved, cues: [cue(1000, 2000, 'Hello'), cue(3000, 4000, 'You')], ...rest });

test('lines are loaded anew while the film is read, and not asked for any more after that', async () => {
  const service = new FakeService();
  service.changes = [{ revision: 1, isReadingFilm: true, readPercent: 5 }, { revision: 4, isReadingFilm: false, readPercent: 0 }];
  const seen = [];
  const subtitles = new Subtitles(service, 7, () => seen.push(subtitles.isReadingFilm));
  await subtitles.follow();
  assert.deepEqual(service.asked, ['changes undefined', 'lines', 'changes 1', 'lines']);
  assert.deepEqual(seen, [true, false]);
});

test('a moved track is drawn moved at once, saved once, and not moved back by a late reply', async (t) => {
  t.mock.timers.enable({ apis: ['setTimeout'] });
  const service = new FakeService();
  service.reply.learned = track(3);
  const subtitles = new Subtitles(service, 7, () => {});
  await subtitles.load();
  const keys = new TimingKeys(subtitles, { positionMs: 3300 }, () => {});
  keys.move(1);
  keys.move(1);
  assert.equal(subtitles.cues('learned'), subtitles.cues('learned'), 'made once');
  assert.equal(subtitles.cues('learned')[0].startMs, 1200);
  await subtitles.load();
  assert.equal(subtitles.cues('learned')[0].startMs, 1200);
  t.mock.timers.tick(1000);
  assert.deepEqual(service.asked, ['lines', 'lines', 'timing 3 200']);
  keys.lineIsNow(0);
  assert.equal(subtitles.cues('learned')[1].startMs, 3300);
  keys.lineIsNow(1);
  assert.equal(subtitles.cues('learned')[1].startMs, 3300, 'there is no next line');
  keys.reset();
  subtitles.saveNow();
  assert.equal(service.asked.at(-1), 'timing 3 0');
});

test('a reply that was overtaken changes nothing, and trouble is told until it is over', async () => {
  const service = new FakeService();
  const replies = [];
  service.filmLines = () => new Promise((settle, fail) => { replies.push({ settle, fail }); });
  const subtitles = new Subtitles(service, 7, () => {});
  const loads = [subtitles.load(), subtitles.load()];
  replies[1].settle({ ...service.reply, learned: track(2) });
  replies[0].settle({ ...service.reply, learned: track(1) });
  await Promise.all(loads);
  assert.equal(subtitles.line('learned').subtitleId, 2);
  const more = [subtitles.load(), subtitles.load()];
  replies[3].fail(new Error('Gone.'));
  replies[2].settle({ ...service.reply, learned: track(3) });
  assert.deepEqual((await Promise.allSettled(more)).map(({ status }) => status), ['fulfilled', 'rejected']);
  assert.equal(subtitles.line('learned').subtitleId, 3, 'nothing newer has come');

  const troubles = [];
  const failing = new FakeService();
  failing.changes = [new Error('Gone.'), { revision: 0, isReadingFilm: false, readPercent: 0 }];
  const later = new Subtitles(failing, 7, () => troubles.push(later.trouble));
  await later.follow();
  assert.deepEqual(troubles, ['Gone.', '']);
});

test('an added file becomes the line of its language, or the one that is free', async () => {
  const service = new FakeService();
  service.reply.learned = track(3);
  const subtitles = new Subtitles(service, 7, () => {});
  await subtitles.load();
  for (const [language, line] of [['eng', 'learned'], ['fra', 'native'], ['', 'native']]) {
    await subtitles.add({ name: language });
    assert.equal(service.asked.at(-2), `choose {"${line}":9}`);
  }
});

test('the next subtitle goes round the usable ones and none', async () => {
  const service = new FakeService();
  service.reply.tracks = [{ subtitleId: 1 }, { subtitleId: 2, error: { message: 'x' } }, { subtitleId: 4 }, { subtitleId: 5 }];
  service.reply.native = track(4);
  const said = [];
  const subtitles = new Subtitles(service, 7, () => {});
  await subtitles.load();
  const keys = new TimingKeys(subtitles, {}, (text) => said.push(text));
  for (const shown of [null, track(1), track(5)]) {
    service.reply.learned = shown;
    await subtitles.load();
    await keys.nextSubtitle();
  }
  assert.deepEqual(service.asked.filter((text) => text.startsWith('choose')),
    ['choose {"learned":1}', 'choose {"learned":5}', 'choose {"learned":0}']);
});

test('before there is a subtitle to choose from, the key says so and none is not kept as chosen', async () => {
  const service = new FakeService();
  const said = [];
  const subtitles = new Subtitles(service, 7, () => {});
  const keys = new TimingKeys(subtitles, {}, (text) => said.push(text));
  await keys.nextSubtitle();
  Object.assign(subtitles, { isReadingFilm: true, readPercent: 40 });
  await subtitles.load();
  await keys.nextSubtitle();
  assert.deepEqual(service.asked, ['lines']);
  assert.equal(said[0], 'No subtitle in the upper line');
  assert.match(said[1], /own subtitles… 40 %/);
});

test('the notice names what cannot be used, and says nothing when all is well', () => {
  const bad = { fileName: 'F.sub', error: { message: 'Pictures, not text: cannot be clicked.' } };
  const state = { fileName: 'F.mkv', tracks: [bad], trouble: '', isLoaded: true };
  assert.equal(noticeOf(state, 2), '');
  assert.equal(noticeOf(state, 1), 'F.sub: Pictures, not text: cannot be clicked.');
  assert.match(noticeOf({ ...state, tracks: [] }, 0), /put F\.en\.srt next to it/);
  assert.equal(noticeOf({ ...state, tracks: [{}] }, 0), '', 'the learner has chosen none');
  assert.equal(noticeOf({ ...state, trouble: 'Gone.', isLoaded: false }, 0), 'No lines: Gone.');
  assert.equal(noticeOf({ ...state, tracks: [], isLoaded: false }, 0), '', 'nothing is known yet');
  assert.match(noticeOf({ ...state, tracks: [{}], isReadingFilm: true, readPercent: 7 }, 0), /own subtitles… 7 %/);
});

test('a track tells what it is in a short line', () => {
  const told = { source: 'inside', title: 'SDH', fileName: '', languageName: 'English', isThere: true, cueCount: 12 };
  assert.equal(trackDetails({ ...told, hearingImpaired: true }), 'SDH · inside the film · for the hard of hearing · 12 lines');
  assert.equal(trackDetails({ ...told, source: 'beside', fileName: 'a.srt', languageName: '', title: '', isThere: false }),
    'no longer beside the film · 12 lines');
});
