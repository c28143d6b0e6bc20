// SPDX-License-Identifier: GPL-3.0-or-later
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { Answers } from '../../web/home/answers.mjs';
import { Trouble } from '../../web/home/frame/trouble.mjs';
import { LastWish } from '../../web/home/lastwish.mjs';
import { FakeTimers } from './faketimers.mjs';

const settled = () => new Promise((go) => { setImmediate(go); });

/** Wishes that are carried out when the test says so. */
function wishes() {
  const asked = [];
  const wish = new LastWish((value) => new Promise((settle, refuse) => { asked.push({ value, settle, refuse }); }));
  return { wish, asked, values: () => asked.map(({ value }) => value).join(' ') };
}

test('of quick wishes the first and the last are carried out, in this order and never at once', async () => {
  const { wish, asked, values } = wishes();
  const told = [wish.want('fra')];
  await settled();
  told.push(wish.want('deu'), wish.want('spa'));
  await settled();
  assert.equal(values(), 'fra');
  asked[0].settle();
  await settled();
  assert.deepEqual([values(), wish.isUnderWay], ['fra spa', true]);
  asked[1].settle();
  assert.deepEqual(await Promise.all(told), [false, false, true]);
  assert.equal(wish.isUnderWay, false);
});

test('a wish that fails is told only when none has come after it, and stops none', async () => {
  const { wish, asked, values } = wishes();
  const first = wish.want('fra');
  await settled();
  const second = wish.want('deu');
  asked[0].refuse(new Error('no'));
  assert.equal(await first, false);
  await settled();
  asked[1].refuse(new Error('not now'));
  await assert.rejects(second, /not now/);
  const third = wish.want('spa');
  await settled();
  asked[2].settle();
  assert.deepEqual([await third, values()], [true, 'fra deu spa']);
});

test('what comes right takes only its own error away, and all go with time', (context) => {
  const timers = new FakeTimers(context);
  const line = { textContent: '' };
  const trouble = new Trouble(line);
  trouble.tell('films', new Error('No films.'));
  trouble.tell('language', new Error('No language.'));
  trouble.tell('learner', null);
  assert.equal(line.textContent, 'No language.');
  trouble.tell('language', null);
  assert.equal(line.textContent, 'No films.');
  timers.pass(12_000);
  assert.equal(line.textContent, '');
});

test('an answer is asked for once, and a failure again', async () => {
  const answers = new Answers();
  let asked = 0;
  const ask = async () => {
    asked += 1;
    if (asked === 1) throw new Error('not now');
    return asked;
  };
  await assert.rejects(answers.of('sea', ask), /not now/);
  assert.equal(answers.has('sea'), false);
  assert.deepEqual(await Promise.all([answers.of('sea', ask), answers.of('sea', ask)]), [2, 2]);
  answers.clear();
  assert.equal(await answers.of('sea', ask), 3);
});
