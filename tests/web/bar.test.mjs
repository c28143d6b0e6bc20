// SPDX-License-Identifier: GPL-3.0-or-later
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { withoutRoom } from '../../web/play/bar/overflow.mjs';
import { said } from '../../web/play/bar/seekbar.mjs';
import { speechShares } from '../../web/play/bar/speechmap.mjs';
import { CueIndex } from '../../web/play/lines/cueindex.mjs';

const cue = (startMs, endMs, ...lines) => ({ startMs, endMs, lines });

test('the strip tells each part\'s share of speech, and counts what is said at once only once', () => {
  const shares = speechShares([cue(500, 1500), cue(1000, 1250), cue(1400, 2000), cue(3500, 9000)], 4000, 4);
  assert.deepEqual([...shares], [0.5, 1, 0, 0.5]);
  const unbroken = Array.from({ length: 900 }, (_, i) => cue(i * 10, i * 10 + 10));
  assert.ok(speechShares(unbroken, 9000, 7).every((share) => Math.abs(share - 1) < 1e-4));
});

test('under the pointer is what is said in that second, also when it begins within it', () => {
  const index = new CueIndex([cue(1000, 2500, 'One', 'two'), cue(4700, 6000, 'Three')]);
  assert.deepEqual([0, 1000, 2000, 3000, 4000, 7000].map((ms) => said(index, ms)),
    ['', 'One two', 'One two', '', 'Three', '']);
});

test('without room the least needed goes first, and no more than must', () => {
  const items = [[150, Infinity], [110, 20], [84, 10], [38, 45], [38, 25]].map(([width, rank]) => ({ width, rank }));
  const gone = (room) => [...withoutRoom(items, room, 40)].sort();
  assert.deepEqual(gone(420), []);
  assert.deepEqual(gone(419), [2], 'the button that takes them up has room, too');
  assert.deepEqual(gone(375), [1, 2]);
  assert.deepEqual(gone(265), [1, 2, 4]);
  assert.deepEqual(gone(10), [1, 2, 3, 4], 'the first stays whatever happens');
});
