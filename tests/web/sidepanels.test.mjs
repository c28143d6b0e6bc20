// SPDX-License-Identifier: GPL-3.0-or-later
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { belongsToPanel } from '../../web/play/panels/sidepanels.mjs';

test('a panel keeps the keys that its parts need, and leaves the player its own', () => {
  const kept = (key, inTextField, more = {}) => belongsToPanel({ key, ...more }, inTextField);
  assert.deepEqual([' ', 'Enter', 'ArrowUp', 's', 'F3', 'PageDown'].map((key) => kept(key, false)),
    [true, true, true, false, false, false]);
  assert.deepEqual(['s', ' ', '/', 'Home', 'F3'].map((key) => kept(key, true)), [true, true, true, true, false]);
  assert.equal(kept('c', true, { ctrlKey: true }), true, 'copies what is written');
  assert.equal(kept('f', true, { ctrlKey: true }), false);
});
