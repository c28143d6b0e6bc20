// SPDX-License-Identifier: GPL-3.0-or-later
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { belongsToPanel } from '../../web/play/panels/sidepanels.mjs';

test('a panel keeps the keys that its parts need, and leaves the player its own', () => {
  const kept = (focused, keys, more = {}) => keys.filter((key) => belongsToPanel({ key, ...more }, focused)).join();
  const keys = [' ', 'Enter', 'ArrowUp', 'ArrowLeft', 's', 'F3', 'PageDown', 'Home'];
  assert.equal(kept('part', keys), ' ,Enter,ArrowUp,ArrowLeft,PageDown,Home');
  assert.equal(kept('list', keys), 'Enter,ArrowUp,PageDown,Home', 'the space bar is the film\'s');
  assert.equal(kept('body', keys), 'ArrowUp,PageDown,Home', 'it scrolls, and the film goes on with the rest');
  assert.equal(kept('', keys), '');
  assert.equal(kept('field', [...keys, '/']), ' ,Enter,ArrowUp,ArrowLeft,s,PageDown,Home,/');
  assert.equal(kept('field', ['c', 'f'], { ctrlKey: true }), 'c', 'copies what is written');
});
