// SPDX-License-Identifier: GPL-3.0-or-later
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { digitOf } from '../../web/home/digit.mjs';
import { titleTexts } from '../../web/home/films/filmcard.mjs';
import { filmProgress } from '../../web/home/films/filmprogress.mjs';
import { filmTitle } from '../../web/shared/filmtitle.mjs';
import { levelText } from '../../web/home/frame/levelmeter.mjs';
import { placeOfWord, placesOf } from '../../web/home/marking.mjs';
import { PendingRemoval } from '../../web/home/removal.mjs';
import { Hits, grouped } from '../../web/home/search/hits.mjs';
import { ankiText } from '../../web/home/lists/ankipart.mjs';
import { Polling } from '../../web/home/lists/polling.mjs';
import { sizeText } from '../../web/home/lists/sizetext.mjs';
import { WordPages, rowsInView } from '../../web/home/words/wordpages.mjs';
import { FakeTimers } from './faketimers.mjs';

const settled = () => new Promise((go) => { setImmediate(go); });

test('a film has the title that people would write', () => {
  const cases = [
    ['A Walk by the Sea.mkv', 'A Walk by the Sea', null],
    ['The.Old.House.2019.1080p.BluRay.x264-GROUP.mkv', 'The Old House', 2019],
    ['the_old_house.mp4', 'The Old House', null],
    ['Garden.2049.2017.EXTENDED.2160p.WEB-DL.mkv', 'Garden 2049', 2017],
    ['1917 (2019).mkv', '1917', 2019],
    ['1917.mkv', '1917', null],
    ['2001.A.Sea.Voyage.1968.720p.mkv', '2001 A Sea Voyage', 1968],
    ['The Spider\'s Web [2006] [1080p].mkv', 'The Spider\'s Web', 2006],
    ['[Group] Night Train [720p].mkv', 'Night Train', null],
    ['720p.mkv', '720p', null],
    ['Élan.vital.hdtv.avi', 'Élan vital', null],
    ['no extension', 'No Extension', null],
    ['', '', null],
  ];
  for (const [fileName, title, year] of cases) {
    const found = filmTitle(fileName);
    assert.deepEqual([found.title, found.year, found.episode], [title, year, null], fileName);
  }
});

test('an episode has its series, its numbers and its name', () => {
  const parts = (fileName) => Object.values(filmTitle(fileName));
  const storm = parts('harbour.lights.S02E05.The.Storm.720p.WEB-DL.mkv');
  assert.deepEqual(storm, ['Harbour Lights', null, 2, 5, 'The Storm']);
  const tide = parts('Harbour Lights (1998) - 1x07 - Low Tide.mkv');
  assert.deepEqual(tide, ['Harbour Lights', 1998, 1, 7, 'Low Tide']);
  assert.deepEqual(parts('Harbour.Lights.s01e10e11.mkv'), ['Harbour Lights', null, 1, 10, '']);
  assert.deepEqual(parts('Flat 16x90 Screen.mkv').slice(2, 4), [16, 90], 'what looks like an episode is one');
});

test('a film without a name has a text, and a very long name takes no longer than a short one', () => {
  assert.deepEqual(titleTexts(''), { title: 'Film without a name', detail: '' });
  assert.equal(filmTitle('....mkv').title, '....mkv');
  assert.equal(filmTitle(`${'a'.repeat(254)}😀 b.mkv`).title.length, 254, 'no half of a letter');
  const began = performance.now();
  for (const piece of [' ', '.', '(', ' web ', ' s1', '[', ' \naac', '-_', '2001 ', '.1a']) {
    filmTitle(`x${piece.repeat(100_000)}y`);
    filmTitle(`x${piece.repeat(50)}y`.repeat(2000));
  }
  assert.ok(performance.now() - began < 1000);
});

test('the way through a film never exceeds it, and its last minute counts as one', () => {
  assert.deepEqual(filmProgress({ positionMs: 30_000, durationMs: 60_000 }), { percent: 50, minutesLeft: 1 });
  assert.deepEqual(filmProgress({ positionMs: 90_000, durationMs: 60_000 }), { percent: 100, minutesLeft: 1 });
  assert.deepEqual(filmProgress({ positionMs: 90_000, durationMs: 0 }), { percent: 0, minutesLeft: null });
  assert.deepEqual(filmProgress({ positionMs: 0, durationMs: 6_000_000 }), { percent: 0, minutesLeft: 100 });
  assert.equal(filmProgress({ positionMs: 100, durationMs: 60_000, isFinished: true }).percent, 100);
});

test('words are found in a line as the service finds them', () => {
  const marked = (text, searched, options) => (
    placesOf(text, searched, options).map(({ start, end }) => text.slice(start, end)));
  assert.deepEqual(marked('Run! He runs, running.', 'run'), ['Run', 'runs', 'running']);
  assert.deepEqual(marked('Run! He runs, running.', 'run', { wholeWord: true }), ['Run']);
  assert.deepEqual(marked('Look\nforward to the cafés', 'look FORWARD'), ['Look\nforward']);
  assert.deepEqual(marked('Look\nforward to the cafés', 'cafe'), ['cafés']);
  assert.deepEqual(marked('I don\'t, you don’t', 'don\'t'), ['don\'t', 'don’t']);
  assert.deepEqual(marked('well, well, well', 'well well'), ['well, well']);
  assert.deepEqual(marked('anything', '…'), []);
  assert.deepEqual(placeOfWord('The running man runs', 'run'), null);
  assert.deepEqual(placeOfWord('The running man runs', 'runs'), { start: 16, end: 20 });
});

test('only the rows in view are drawn, with a few to spare', () => {
  const view = { rowHeight: 50, height: 200, length: 10_000, spare: 2 };
  assert.deepEqual(rowsInView({ ...view, scrollTop: 0 }), { first: 0, last: 6 });
  assert.deepEqual(rowsInView({ ...view, scrollTop: 5000 }), { first: 98, last: 106 });
  assert.deepEqual(rowsInView({ ...view, scrollTop: 499_900 }).last, 9999);
  assert.deepEqual(rowsInView({ ...view, scrollTop: 0, length: 0 }), { first: 0, last: -1 });
  const { first, last } = rowsInView({ ...view, scrollTop: 5000, length: 10 });
  assert.ok(first <= last, 'after the list has become shorter');
});

/** A service that has so many words, and counts what it is asked. */
function wordSource(total) {
  const asked = [];
  const load = async (offset, count) => {
    asked.push(offset);
    const length = Math.max(0, Math.min(count, total - offset));
    const words = Array.from({ length }, (_, i) => ({ lemma: `w${offset + i}` }));
    return { total, words };
  };
  return { asked, load };
}

test('of ten thousand words only the pages that are looked at are fetched, and each once', async () => {
  const { asked, load } = wordSource(10_000);
  const pages = new WordPages(load, () => {}, 100);
  await pages.renew();
  pages.need(5000, 5010);
  pages.need(5005, 5099);
  await settled();
  assert.deepEqual(asked, [0, 5000]);
  assert.equal(pages.length, 10_000);
  assert.equal(pages.word(5042).lemma, 'w5042');
  assert.equal(pages.word(700), undefined);
});

test('a word that is about to go leaves no gap, also where pages meet', async () => {
  const pages = new WordPages(wordSource(250).load, () => {}, 100);
  await pages.renew(0, 249);
  pages.hide('w99');
  assert.equal(pages.length, 249);
  assert.deepEqual([98, 99, 248].map((at) => pages.word(at).lemma), ['w98', 'w100', 'w249']);
  pages.show('w99');
  assert.deepEqual([99, 249].map((at) => pages.word(at).lemma), ['w99', 'w249']);
});

/** A list of words as the view takes them away; answer(isDone): how the service takes the next removal. */
async function removableWords(...lemmas) {
  let words = lemmas.map((lemma) => ({ lemma }));
  const asked = [];
  const pages = new WordPages(async () => ({ total: words.length, words: [...words] }), () => {});
  const removal = new PendingRemoval(5000);
  const remove = (lemma) => {
    removal.begin({
      carryOut: async () => {
        const isDone = await new Promise((answer) => { asked.push(answer); });
        if (isDone) {
          words = words.filter((each) => each.lemma !== lemma);
          pages.forget(lemma);
        } else pages.show(lemma);
        await pages.renew();
      },
      takenBack: () => pages.show(lemma),
    });
    pages.hide(lemma);
  };
  await pages.renew();
  const shown = () => Array.from({ length: pages.length }, (_, at) => pages.word(at).lemma).join(' ');
  const answer = async (isDone) => { asked.shift()(isDone); await settled(); };
  return { pages, removal, remove, shown, answer, comesAnew: (lemma) => words.unshift({ lemma }) };
}

test('words taken away one after the other stay hidden, each until its own end', async (context) => {
  const timers = new FakeTimers(context);
  const list = await removableWords('sea', 'rain', 'wind', 'snow', 'fog');
  const { pages, removal, remove, shown, answer, comesAnew } = list;
  remove('rain');
  remove('wind');
  assert.equal(shown(), 'sea snow fog', 'while the first is under way');
  await answer(true);
  assert.equal(shown(), 'sea snow fog', 'after the renewal that the first has brought');
  comesAnew('ice');
  await pages.renew();
  assert.equal(shown(), 'ice sea snow fog', 'wherever the word stands now');
  removal.takeBack();
  assert.equal(shown(), 'ice sea wind snow fog');
  remove('snow');
  timers.pass(5000);
  await answer(false);
  assert.equal(shown(), 'ice sea wind snow fog', 'what the service kept shows again');
});

test('a word that is gone does not come back with a reply from before', async () => {
  const replies = [];
  const pages = new WordPages(() => new Promise((settle) => { replies.push(settle); }), () => {});
  const both = { total: 2, words: [{ lemma: 'sea' }, { lemma: 'rain' }] };
  const early = pages.renew();
  pages.hide('rain');
  pages.forget('rain');
  replies[0](both);
  await early;
  assert.deepEqual([pages.length, pages.word(0).lemma], [1, 'sea']);
  const late = pages.renew(); // it was saved again meanwhile
  replies[1](both);
  await late;
  assert.equal(pages.length, 2);
});

test('what comes late for an earlier filter is passed over, and a page that failed is asked for again', async () => {
  const answers = [];
  const seen = [];
  const load = () => new Promise((settle, refuse) => { answers.push({ settle, refuse }); });
  const pages = new WordPages(load, (error) => seen.push(error?.message ?? 'words'), 10);
  const first = pages.renew();
  const second = pages.renew();
  answers[1].settle({ total: 30, words: [{ lemma: 'new' }] });
  await second;
  answers[0].settle({ total: 1, words: [{ lemma: 'old' }] });
  await first;
  assert.equal(pages.word(0).lemma, 'new');
  pages.need(20, 25);
  answers[2].refuse(new Error('gone'));
  await settled();
  pages.need(20, 25);
  assert.equal(answers.length, 4);
  assert.deepEqual(seen, ['words', 'gone']);
});

test('a removal is carried out in time or when the next comes, and never once it was taken back', (context) => {
  const timers = new FakeTimers(context);
  const removal = new PendingRemoval(5000);
  const log = [];
  const begin = (key) => removal.begin({
    key,
    carryOut: () => log.push(`gone ${key}`),
    takenBack: () => log.push(`back ${key}`),
    done: () => log.push(`done ${key}`),
  });
  begin('a');
  assert.equal(removal.has('a'), true);
  begin('b');
  removal.takeBack();
  begin('c');
  timers.pass(5000);
  removal.takeBack();
  assert.deepEqual(log, ['done a', 'gone a', 'done b', 'back b', 'done c', 'gone c']);
});

test('the time of a removal stands still while it is held', (context) => {
  const timers = new FakeTimers(context);
  const removal = new PendingRemoval(5000);
  let isGone = false;
  removal.begin({ key: 'a', carryOut: () => { isGone = true; }, takenBack: () => {} });
  timers.pass(4000);
  removal.hold(true);
  timers.pass(60_000);
  assert.equal(isGone, false);
  removal.hold(false);
  timers.pass(4999);
  assert.equal(isGone, false);
  timers.pass(1);
  assert.equal(isGone, true);
});

test('hits are grouped by film in the order in which they come, over pages too', async () => {
  const line = (videoId, text) => ({ videoId, fileName: `${videoId}.mkv`, text });
  const pages = [
    { lines: [line(2, 'a'), line(1, 'b')], next: 7 },
    { lines: [line(1, 'c'), line(3, 'd')], next: null },
  ];
  const asked = [];
  const searchLines = async (text, { below }) => {
    asked.push(below);
    return pages[below ? 1 : 0];
  };
  const hits = new Hits({ searchLines });
  assert.equal(await hits.search({ text: 'sea' }), true);
  const [first, second] = [hits.groups, await hits.more()];
  assert.equal(second, true);
  const told = hits.groups.map(({ videoId, lines }) => [videoId, lines.map(({ text }) => text).join('')]);
  assert.deepEqual(told, [[2, 'a'], [1, 'bc'], [3, 'd']]);
  assert.equal(first[1].lines.length, 1, 'what was shown is not changed under it');
  assert.equal(await hits.more(), false);
  assert.deepEqual(asked, [undefined, 7]);
  assert.deepEqual(grouped([], []), []);
});

test('a renewed search brings as many lines as were there, and an empty one none', async () => {
  const lines = Array(30).fill({ videoId: 1 });
  const pages = [{ lines, next: 9 }, { lines, next: 4 }];
  const hits = new Hits({ searchLines: async (text, { below }) => pages[below ? 1 : 0] });
  await hits.search({ text: 'sea' }, 45);
  assert.equal(hits.count, 60);
  await hits.search({ text: ' ' }, 45);
  assert.deepEqual([hits.query, hits.count, hits.hasMore], [null, 0, false]);
});

test('a new search has its further lines while those of the earlier one still load, and never theirs', async () => {
  const waiting = [];
  const searchLines = (text, { below }) => new Promise((settle, refuse) => {
    const lines = [{ videoId: 1, text: `${text} ${below ?? 'first'}` }];
    waiting.push({ come: () => settle({ lines, next: below ? null : 9 }), fail: refuse });
  });
  const hits = new Hits({ searchLines });
  const next = async () => { waiting.shift().come(); await settled(); };
  const texts = () => hits.groups.flatMap(({ lines }) => lines.map(({ text }) => text));
  hits.search({ text: 'sea' });
  await next();
  const early = hits.more();
  const search = hits.search({ text: 'rain' });
  assert.equal(await hits.more(), false, 'the lines that show are about to go');
  waiting.reverse();
  await next();
  const late = hits.more();
  assert.equal(await hits.more(), false, 'once is enough');
  await next();
  await next();
  assert.deepEqual(await Promise.all([early, search, late]), [false, true, true]);
  assert.deepEqual(texts(), ['rain first', 'rain 9']);
});

test('after a search that failed the earlier one goes on', async () => {
  let isGone = false;
  const searchLines = async (text, { below }) => {
    if (isGone) throw new Error('It is gone.');
    return { lines: [{ videoId: 1 }], next: below ? null : 9 };
  };
  const hits = new Hits({ searchLines });
  await hits.search({ text: 'sea' });
  isGone = true;
  await assert.rejects(hits.search({ text: 'rain' }), /gone/);
  isGone = false;
  assert.equal(await hits.more(), true);
  assert.deepEqual([hits.query.text, hits.count], ['sea', 2]);
});

test('an answer to an earlier search does not replace the later one', async () => {
  const answers = new Map();
  const hits = new Hits({ searchLines: (text) => new Promise((settle) => { answers.set(text, settle); }) });
  const early = hits.search({ text: 'se' });
  const late = hits.search({ text: 'sea' });
  answers.get('sea')({ lines: [{ videoId: 1 }], next: null });
  assert.equal(await late, true);
  answers.get('se')({ lines: [{ videoId: 2 }, { videoId: 3 }], next: null });
  assert.equal(await early, false);
  assert.equal(hits.count, 1);
});

test('digits are known on keyboards that write them with Shift, and signs above them are none', () => {
  assert.equal(digitOf({ key: '3', code: 'Digit3' }), 3);
  assert.equal(digitOf({ key: '3', code: 'Numpad3' }), 3);
  assert.equal(digitOf({ key: '"', code: 'Digit3' }), 3);
  assert.equal(digitOf({ key: '3', code: 'Digit3', shiftKey: true }), 3);
  assert.equal(digitOf({ key: '/', code: 'Digit7', shiftKey: true }), null);
  assert.equal(digitOf({ key: 'u', code: 'KeyU' }), null);
});

test('states are told as sentences', () => {
  assert.equal(levelText({ level: 'A2', nextLevel: 'B1', percentToNext: 40, vocabulary: 1500 }),
    'Level A2, 40 % of the way to B1, about 1,500 words');
  const top = { level: 'C2', nextLevel: null, percentToNext: 100, vocabulary: 1 };
  assert.equal(levelText(top), 'Level C2, about 1 word');
  const problem = { message: 'Anki is not there.' };
  const anki = { isOn: true, waitingCount: 3, sentCount: 12, refusedCount: 0, problem };
  assert.equal(ankiText(anki), 'Anki is not there. Sent: 12. Waiting: 3.');
  assert.equal(ankiText({ ...anki, isOn: false }), '');
  assert.deepEqual([400, 999_999, 1_450_000].map(sizeText), ['1 kB', '1,000 kB', '1.5 MB']);
});

test('what is looked at while a panel is open is looked at once at a time, and no more when it is closed', async (context) => {
  const timers = new FakeTimers(context);
  const answers = [];
  const polling = new Polling(() => new Promise((answer) => { answers.push(answer); }), 500);
  const told = async (answer) => { answers.at(-1)(answer); await settled(); };
  polling.again();
  assert.equal(answers.length, 0, 'it is not open yet');
  polling.start();
  polling.again(); // a button was pressed while the first look was under way
  assert.equal(answers.length, 2);
  answers[0]();
  await told();
  timers.pass(500);
  assert.equal(answers.length, 3, 'one look follows, and not one for each that has ended');
  await told(false);
  timers.pass(5000);
  assert.equal(answers.length, 3, 'there is nothing more to see');
  polling.again();
  polling.stop();
  await told();
  timers.pass(5000);
  assert.equal(answers.length, 4, 'it was closed during the look');
});
