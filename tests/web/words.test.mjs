// SPDX-License-Identifier: GPL-3.0-or-later

import assert from 'node:assert/strict';
import { test } from 'node:test';
import { formOf, lineText, sentenceAround, wordsOf } from '../../web/play/lines/linetext.mjs';
import { cardPlace } from '../../web/play/words/cardplace.mjs';
import { FilmWords } from '../../web/play/words/filmwords.mjs';
import { byPartOfSpeech, likeliest, lookUpPicked } from '../../web/play/words/lookups.mjs';
import { PickedWord } from '../../web/play/words/pickedword.mjs';
import { WordRecord } from '../../web/play/words/wordrecord.mjs';
import { occurrences } from '../../web/play/words/occurrences.mjs';

const cue = (startMs, ...lines) => ({ startMs, endMs: startMs + 1000, lines, italics: [] });

test('words are told from what stands between them', () => {
  const words = (text) => wordsOf(text).map((word) => word.text);
  assert.deepEqual(words("- Don't go, Mr. O’Neill!"), ["Don't", 'go', 'Mr', 'O’Neill']);
  assert.deepEqual(words('a well-known “thing” – 42, 7th'), ['a', 'well-known', 'thing', '7th']);
  assert.deepEqual(words("He said 'hello' and was goin' home"), ['He', 'said', 'hello', 'and', 'was', "goin'", 'home']);
  assert.deepEqual(words('naïve cafés Ωmega'), ['naïve', 'cafés', 'Ωmega']);
  assert.deepEqual(words('… ♪ -- 100 %'), []);
  assert.equal(formOf('O’NEILL'), "o'neill");
});

test('a line is drawn in parts that make up its text, with its italics, and words know their place in all of it', () => {
  const { text, words, lines } = lineText([
    { lines: ['Oh, <b> well', 'go on'], italics: [{ line: 0, start: 4, end: 9 }, { line: 1, start: 0, end: 5 }] },
    { lines: ['Now'], italics: [] },
  ]);
  assert.equal(text, 'Oh, <b> well\ngo on\nNow');
  assert.equal(lines.map((parts) => parts.flatMap((part) => part.pieces.map((piece) => piece.text)).join('')).join('\n'), text);
  for (const word of words) assert.equal(text.slice(word.start, word.end), word.text);
  assert.deepEqual(words.map((word) => word.text), ['Oh', 'b', 'well', 'go', 'on', 'Now']);
  const well = lines[0].find((part) => part.word === 2);
  assert.deepEqual(well.pieces, [{ text: 'w', isItalic: true }, { text: 'ell', isItalic: false }]);
});

test('a sentence is followed into the lines around, and no further', () => {
  assert.deepEqual(sentenceAround('looking forward', 'I have been', 'to it.'), { text: 'I have been\nlooking forward\nto it.', offset: 12 });
  assert.deepEqual(sentenceAround('Yes.', 'Really?', 'No'), { text: 'Yes.', offset: 0 });
  assert.deepEqual(sentenceAround('end.', '', ''), { text: 'end.', offset: 0 });
  const long = 'x'.repeat(890);
  const song = '𝄞'.repeat(600);
  for (const at of [0, 300, 450, 600, 1200]) {
    const text = `${song.slice(0, at)}word${song.slice(at)}`;
    const around = sentenceAround(text, '', '', at, at + 4);
    assert.equal(around.text.slice(around.offset + at).slice(0, 4), 'word');
    assert.ok(around.text.length <= 900 && around.text.length >= 898);
    assert.ok(!/[\ud800-\udfff]/u.test(around.text), 'no half of a character');
  }
  assert.deepEqual(sentenceAround('a word', long, long), { text: `${long}\na word`, offset: 891 });
});

test('a word is found in the other lines in all its forms, those to come first', () => {
  const cues = [cue(0, 'I ran.'), cue(1000, 'Run!'), cue(2000, 'Running', 'late'), cue(3000, 'a trunk'), cue(4000, 'Look', 'forward')];
  const found = occurrences(cues, ['run', 'ran', 'running'], cues[1], 5);
  assert.deepEqual(found, { count: 2, cues: [cues[2], cues[0]] });
  assert.equal(occurrences(cues, ['look forward'], cues[0], 5).count, 1);
  assert.deepEqual(occurrences(cues, ['run', 'ran', 'running'], cues[3], 2).cues, [cues[0], cues[1]]);
});

test('a card stands where there is room, within the window, and hides no line', () => {
  const window = { width: 1000, height: 600 };
  const lines = { top: 450, bottom: 530 };
  const above = cardPlace({ word: { left: 480, right: 520 }, lines, width: 400, window, reserved: 60 });
  assert.deepEqual(above, { left: 300, bottom: 160, maxHeight: 430 });
  assert.equal(cardPlace({ word: { left: 0, right: 20 }, lines, width: 400, window, reserved: 60 }).left, 10);
  assert.equal(cardPlace({ word: { left: 980, right: 999 }, lines, width: 400, window, reserved: 60 }).left, 590);
  const below = cardPlace({ word: { left: 480, right: 520 }, lines: { top: 20, bottom: 100 }, width: 400, window, reserved: 60 });
  assert.deepEqual(below, { left: 300, top: 110, maxHeight: 430 });
});

const filmReply = {
  subtitleId: 3,
  words: [
    { lemma: 'see', forms: ['saw', 'see'], status: null, isKnown: true },
    { lemma: 'saw', forms: ['saw', 'saws'], status: null, isKnown: false },
    { lemma: 'harbour', forms: ['harbour', "harbour's"], status: null, isKnown: false },
    { lemma: 'gull', forms: ['gulls'], status: 'learning2', isKnown: false },
  ],
};

test('the words of a film tell what wants learning, and a mark counts at once', async () => {
  let changes = 0;
  let reply = filmReply;
  const words = new FilmWords({ filmWords: async () => structuredClone(reply) }, 1, () => { changes += 1; });
  assert.equal(words.isHard(cue(0, 'The harbour')), false); // nothing is known of the film yet
  await words.load();
  assert.equal(changes, 1);
  assert.equal(words.classOf('SAW'), ''); // the commoner word keeps the form
  assert.equal(words.classOf('Harbour’s'), 'unknown');
  assert.equal(words.classOf('gulls'), 'learning');
  assert.equal(words.classOf('ship'), '');
  assert.equal(words.isHard(cue(0, 'I see', 'a harbour')), true);
  words.marked({ lemma: 'harbour', status: 'known' });
  assert.equal(words.classOf('harbour'), '');
  assert.equal(words.isHard(cue(0, 'I see', 'a harbour')), false);
  words.marked({ lemma: 'harbour', status: 'new' });
  assert.equal(words.classOf('harbour'), 'fresh');
  words.marked({ lemma: 'no word of this film', status: 'new' });
  reply = { ...filmReply, words: filmReply.words.map((word) => ({ ...word, isKnown: true })) };
  words.marked({ lemma: 'harbour', status: null }); // whether it is known then is the service's to say
  await new Promise(setImmediate);
  assert.equal(words.classOf('harbour'), '');
});

test('a picked word is looked up in its sentence, a phrase by itself, and one that nobody has can still be kept', async () => {
  const asked = [];
  const head = (word, start, length) => ({ word, start, length, entries: [], english: [], gloss: '', status: null });
  const api = {
    lookUp: async (text, at) => { asked.push([text, at]); return { headwords: [head('go', 0, 2)] }; },
    word: async (lemma) => ({ lemma: lemma.toLowerCase(), gloss: 'own', status: 'new' }),
  };
  await lookUpPicked(api, { text: 'go on', start: 3, end: 5, isPhrase: false, before: 'They', after: '' });
  assert.deepEqual(asked[0], ['They\ngo on', 8]);
  const phrase = await lookUpPicked(api, { text: 'Go\non now', start: 0, end: 5, isPhrase: true, before: '', after: '' });
  assert.deepEqual(asked[1], ['Go on', 0]);
  assert.deepEqual(phrase.headwords.map(({ word, gloss }) => [word, gloss]), [['go on', 'own'], ['go', '']]);
  assert.equal(phrase.form, 'Go on');
  assert.equal(phrase.meant, phrase.headwords[0], 'whoever took a phrase means the phrase');
});

test('meanings are grouped as they are read', () => {
  const entry = (partOfSpeech, ...translations) => ({ partOfSpeech, senses: [{ translations, definition: '', examples: [] }] });
  const groups = byPartOfSpeech([entry('noun', 'mer'), entry('verb', 'voir'), entry('noun', 'océan')]);
  assert.deepEqual(groups.map(({ partOfSpeech, senses }) => [partOfSpeech, senses.length]), [['noun', 2], ['verb', 1]]);
});

test('a word that is told in the learner’s language comes before one that is not', () => {
  const head = (word, more = {}) => ({ word, gloss: '', entries: [], english: [{}], isPhrase: false, ...more });
  assert.equal(likeliest([head('known'), head('know', { entries: [{}] })]).word, 'know');
  assert.equal(likeliest([head('look forward', { isPhrase: true }), head('look', { entries: [{}] })]).word, 'look forward');
  for (const phrase of ['a little', 'at the']) {
    const [told, english] = [{ entries: [{}] }, { english: [{}] }];
    assert.equal(likeliest([head(phrase, { isPhrase: true, ...told }), head('word', told)]).word, 'word');
    assert.equal(likeliest([head(phrase, { isPhrase: true, ...english }), head('word')]).word, phrase, 'what else');
  }
  assert.equal(likeliest([head('known')]).word, 'known');
  assert.equal(likeliest([]), null);
});

test('a word that is graded is kept with its line, unless there is nothing to learn', async () => {
  const asked = [];
  const marked = [];
  const word = (status, ...lines) => ({ lemma: 'gull', status, sightings: lines.map((line) => ({ line })) });
  const api = {
    word: async () => word(null),
    saveWord: async (sighting) => { asked.push(['save', sighting]); return word(sighting.status ?? 'new', sighting.line); },
    changeWord: async (lemma, changes) => { asked.push(['change', changes]); return word(changes.status ?? null); },
    forgetWord: async () => { asked.push(['forget']); return word(null); },
  };
  const sighting = { lemma: 'gull', form: 'gulls', line: 'Two gulls' };
  const record = new WordRecord(api, { marked: ({ status }) => marked.push(status) }, sighting);
  await record.loaded;
  assert.deepEqual([record.status, record.isSaved], [null, false]);
  await record.grade('learning2');
  assert.deepEqual(asked.pop(), ['save', { ...sighting, status: 'learning2' }]);
  assert.deepEqual([record.status, record.isSaved], ['learning2', true]);
  await record.toggleSaved();
  assert.deepEqual(asked.pop(), ['forget']);
  await record.grade('ignored');
  assert.deepEqual(asked.pop(), ['change', { status: 'ignored' }]);
  assert.equal(record.isSaved, false);
  assert.deepEqual(marked, ['learning2', null, 'ignored']);
});

test('what is asked of a word is done in its order, also before the service has told of it', async () => {
  const asked = [];
  const slowly = async (pauses) => { for (let i = 0; i < pauses; i += 1) await null; };
  const word = (status, ...lines) => ({ lemma: 'gull', status, sightings: lines.map((line) => ({ line })) });
  const api = {
    word: async () => { await slowly(30); return word(null); },
    saveWord: async ({ line }) => { asked.push('save'); await slowly(20); return word('new', line); },
    changeWord: async (_, { status }) => { asked.push(status); return word(status, 'Two gulls'); },
    forgetWord: async () => { asked.push('forget'); return word(null); },
  };
  const record = new WordRecord(api, { marked() {} }, { lemma: 'gull', line: 'Two gulls' });
  await Promise.all([record.toggleSaved(), record.grade('known'), record.toggleSaved()]);
  assert.deepEqual(asked, ['save', 'known', 'forget']);
  assert.equal(record.status, null);
  asked.length = 0;
  await Promise.all([record.grade('learning3'), record.save()]);
  assert.deepEqual(asked, ['save'], 'what was graded is saved, and not forgotten by a second wish to save it');
  assert.equal(record.isSaved, true);
  const broken = new WordRecord({ ...api, word: async () => { throw new Error('no'); } }, { marked() {} }, { lemma: 'gull', line: 'x' });
  await assert.rejects(broken.loaded);
  await broken.grade('known'); // it can be marked all the same
  assert.equal(broken.status, 'known');
});

test('what is asked of a picked word before the service has told of it is done, also when the card has gone on', async () => {
  const graded = [];
  const lateReplies = [];
  const api = {
    word: async (lemma) => ({ lemma, status: null, sightings: [] }),
    saveWord: async ({ lemma, line, status }) => { graded.push([lemma, status]); return { lemma, status, sightings: [{ line }] }; },
  };
  const pick = () => new PickedWord(api, { marked() {} }, (lemma) => ({ lemma, line: 'Two gulls' }));
  const head = (word) => ({ word, gloss: '', status: null, entries: [], english: [], isPhrase: false });
  const lateReply = () => new Promise((resolve) => { lateReplies.push(resolve); });
  const [first, second] = [pick(), pick()];
  first.lookUp(lateReply);
  const done = first.grade('learning1');
  second.lookUp(lateReply);
  const doneToo = second.grade('learning2');
  lateReplies[1]({ form: 'two', headwords: [], near: [] });
  assert.equal(await doneToo, false, 'nobody has the word, so there is nothing to grade');
  lateReplies[0]({ form: 'gulls', headwords: [head('gull')], near: [] });
  assert.equal(await done, true);
  assert.deepEqual(graded, [['gull', 'learning1']]);
  assert.equal(first.headword.status, 'learning1');
  const broken = pick();
  const asked = broken.lookUp(async () => { throw new Error('no'); });
  await assert.rejects(broken.grade('known'), /no/, 'it is told that it was not done');
  await assert.rejects(asked);
});
