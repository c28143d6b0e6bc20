// SPDX-License-Identifier: GPL-3.0-or-later
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { intervalsOf, lengthText, outcomeText } from '../../web/home/review/intervals.mjs';
import { meaningOf } from '../../web/home/review/meaning.mjs';
import { ReviewSession } from '../../web/home/review/reviewsession.mjs';

const hour = 3_600_000;
const day = 24 * hour;

test('each grade tells when the word comes back', () => {
  const texts = (status) => Object.values(intervalsOf(status)).map(outcomeText);
  assert.deepEqual(texts('new'), ['10 minutes', '10 minutes', '1 day', '3 days']);
  assert.deepEqual(texts('learning1'), ['10 minutes', '12 hours', '3 days', '7 days']);
  assert.deepEqual(texts('learning3'), ['10 minutes', '4 days', '16 days', 'known']);
  assert.deepEqual(texts('learning4'), ['10 minutes', '8 days', 'known', 'known']);
});

test('a length of time is told in its largest unit', () => {
  const cases = [
    [0, '1 minute'], [hour / 2, '30 minutes'], [0.95 * hour, '1 hour'], [3.2 * hour, '3 hours'], [23.5 * hour, '1 day'],
    [2.6 * day, '3 days'],
  ];
  for (const [length, text] of cases) assert.equal(lengthText(length), text);
});

test('the meaning is that of the word itself, else of the first that has one', () => {
  const head = (word, translations, definition = '') => ({
    word,
    entries: translations.length ? [{ pronunciation: '', senses: [{ translations }] }] : [],
    english: definition ? [{ definition }] : [],
  });
  const run = head('run', ['courir', 'courir', 'a', 'b', 'c', 'd'], 'move fast');
  const lookup = { headwords: [head('running', []), head('run up', ['grimper']), run] };
  const told = { translations: ['courir', 'a', 'b', 'c', 'd'], pronunciation: '', definition: 'move fast' };
  assert.deepEqual(meaningOf(lookup, 'run'), told);
  assert.deepEqual(meaningOf(lookup, 'running').translations, ['grimper']);
  assert.deepEqual(meaningOf({}, 'run').translations, []);
});

/** A service with these words due. */
class Service {
  graded = [];
  #due;
  constructor(...lemmas) { this.#due = lemmas.map((lemma) => ({ lemma, status: 'new' })); }
  async review(count) {
    const { length } = this.#due;
    return { dueCount: length, nextDueAtMs: length ? null : 5000, cards: this.#due.slice(0, count) };
  }
  async gradeWord(lemma, grade) {
    if (grade === 'bad') throw new Error('No such grade.');
    this.graded.push([lemma, grade]);
    this.#due = this.#due.filter((card) => card.lemma !== lemma);
    return { dueCount: this.#due.length };
  }
  async undoGrade() {
    if (this.refusesUndo) throw new Error('The word has changed.');
    const [lemma] = this.graded.pop();
    this.#due.unshift({ lemma, status: 'new' });
    return { dueCount: this.#due.length };
  }
  add(lemma) { this.#due.unshift({ lemma, status: 'new' }); }
}

async function begun(...lemmas) {
  const service = new Service(...lemmas);
  const session = new ReviewSession(service);
  await session.load();
  return { service, session };
}

test('a sitting goes from card to card to its end, and tells when the next word comes', async () => {
  const { session } = await begun('sea', 'rain');
  assert.deepEqual([session.card.lemma, session.total], ['sea', 2]);
  session.turn();
  await session.grade('good');
  assert.deepEqual([session.card.lemma, session.isTurned, session.gradedCount, session.total], ['rain', false, 1, 2]);
  session.turn();
  await session.grade('easy');
  assert.deepEqual([session.card, session.nextDueAtMs, session.gradedCount], [null, 5000, 2]);
});

test('a card is graded only once it is turned, and once by two presses', async () => {
  const { service, session } = await begun('sea', 'rain');
  assert.equal(await session.grade('good'), false);
  assert.deepEqual(service.graded, []);
  session.turn();
  assert.deepEqual(await Promise.all([session.grade('good'), session.grade('good')]), [true, false]);
  assert.deepEqual(service.graded, [['sea', 'good']]);
});

test('a grade that the service refuses leaves the card', async () => {
  const { session } = await begun('sea');
  session.turn();
  await assert.rejects(session.grade('bad'), /No such grade/);
  assert.deepEqual([session.card.lemma, session.isTurned, session.canUndo], ['sea', true, false]);
});

test('undo brings the card back, also after the last one', async () => {
  const { session } = await begun('sea', 'rain');
  for (let i = 0; i < 2; i += 1) {
    session.turn();
    await session.grade('good');
  }
  await session.undo();
  assert.deepEqual([session.card.lemma, session.isTurned, session.total, session.gradedCount], ['rain', false, 2, 1]);
  await session.undo();
  await session.undo();
  assert.deepEqual([session.card.lemma, session.gradedCount, session.canUndo], ['sea', 0, false]);
});

test('an undo that is refused is not offered again, until the next grade', async () => {
  const { service, session } = await begun('sea', 'rain');
  session.turn();
  await session.grade('good');
  service.refusesUndo = true;
  await assert.rejects(session.undo(), /has changed/);
  assert.deepEqual([session.canUndo, session.card.lemma, session.gradedCount], [false, 'rain', 1]);
  session.turn();
  await session.grade('good');
  assert.equal(session.canUndo, true);
});

test('after the end a word that comes due begins another sitting', async () => {
  const { service, session } = await begun('sea');
  session.turn();
  await session.grade('again');
  assert.deepEqual([session.card, session.gradedCount], [null, 1]);
  service.add('sea');
  await session.load();
  assert.deepEqual([session.card.lemma, session.gradedCount, session.total], ['sea', 0, 1]);
});

test('new words that come due do not take the turned card away', async () => {
  const { service, session } = await begun('sea', 'rain');
  session.turn();
  service.add('wind');
  await session.load();
  assert.deepEqual([session.card.lemma, session.isTurned, session.total], ['sea', true, 3]);
  await service.gradeWord('sea', 'good'); // in a film, meanwhile
  await session.load();
  assert.deepEqual([session.card.lemma, session.isTurned], ['wind', false]);
});

/** The service's replies to Review come when the test lets them. */
function held(service) {
  const waiting = [];
  const review = service.review.bind(service);
  service.review = async (count) => {
    const reply = await review(count);
    const error = await new Promise((go) => { waiting.push(go); });
    if (error) throw error;
    return reply;
  };
  return { letGo: async (error) => { waiting.shift()(error); await settled(); }, waiting };
}

const settled = () => new Promise((go) => { setImmediate(go); });

test('a reply from before a grade or an undo does not bring its card back', async () => {
  const { service, session } = await begun('sea', 'rain', 'wind');
  const { letGo } = held(service);
  const loaded = session.load();
  await settled();
  session.turn();
  await session.grade('good');
  await letGo();
  await letGo(); // it has asked again
  await loaded;
  assert.deepEqual([session.card.lemma, session.dueCount, session.total], ['rain', 2, 3]);
  const again = session.load();
  await settled();
  await session.undo();
  await letGo();
  await letGo();
  await again;
  assert.deepEqual([session.card.lemma, session.dueCount], ['sea', 3]);
});

test('of two loads the later one counts, in whatever order they come', async () => {
  const { service, session } = await begun('sea');
  const { letGo, waiting } = held(service);
  const early = session.load();
  await settled();
  service.add('rain');
  const late = session.load();
  await settled();
  waiting.reverse();
  await letGo();
  await letGo();
  await Promise.all([early, late]);
  assert.deepEqual([session.card.lemma, session.dueCount], ['sea', 2]);
});

test('when the next cards do not come there is no end but a problem, and the sitting goes on later', async () => {
  const { service, session } = await begun('sea');
  session.turn();
  const { letGo } = held(service);
  const graded = session.grade('good');
  await settled();
  await letGo(new Error('It is gone.'));
  assert.equal(await graded, true, 'the grade itself was taken');
  assert.deepEqual([session.isLoaded, session.problem, session.card], [false, 'It is gone.', null]);
  service.add('rain');
  const loaded = session.load();
  await settled();
  await letGo();
  await loaded;
  assert.deepEqual([session.problem, session.card.lemma, session.gradedCount, session.total], ['', 'rain', 1, 2]);
});
