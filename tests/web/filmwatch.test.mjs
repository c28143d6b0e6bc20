// SPDX-License-Identifier: GPL-3.0-or-later
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { watchForFilms } from '../../web/home/filmwatch.mjs';

/** A service whose replies come one after the other: counts, or errors; then none any more. */
function service(replies) {
  const asked = [];
  return {
    asked,
    pendingFilms(after) {
      asked.push(after);
      if (replies.length === 0) return new Promise(() => {});
      const reply = replies.shift();
      return reply instanceof Error ? Promise.reject(reply) : Promise.resolve(reply);
    },
  };
}

const settled = () => new Promise((go) => { setImmediate(go); });

test('the page says that it is ready at once, and again only for another film', async () => {
  const api = service([3, 3, 4, 4, 6]); // the waits end without news now and then
  let said = 0;
  watchForFilms(api, () => { said += 1; });
  await settled();
  assert.equal(said, 3);
  assert.deepEqual(api.asked, [undefined, 3, 3, 4, 4, 6]);
});

test('a service that fails is asked again after a pause, and no film is missed', async () => {
  const api = service([new Error('gone'), new Error('gone'), 1]);
  const pauses = [];
  let said = 0;
  watchForFilms(api, () => { said += 1; }, async (ms) => { pauses.push(ms); });
  await settled();
  assert.equal(said, 2);
  assert.deepEqual(api.asked, [undefined, 0, 0, 1]);
  assert.equal(pauses.length, 1);
  assert.ok(pauses[0] >= 500, 'a service that is down is left in peace');
});
