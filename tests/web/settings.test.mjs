// SPDX-License-Identifier: GPL-3.0-or-later
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { toggledShow, withShow } from '../../web/play/settings/lineslook.mjs';

test('a hidden line comes back as it was shown before, whoever hid it and whatever is kept', () => {
  const after = (look, ...steps) => steps.reduce((now, step) => ({ ...now, ...step(now) }), look).show;
  const choose = (show) => (look) => withShow(look, show);
  assert.equal(after({ show: 'pause' }, toggledShow), 'never');
  assert.equal(after({ show: 'pause' }, toggledShow, toggledShow), 'pause');
  assert.equal(after({ show: 'hover' }, choose('never'), choose('never'), toggledShow), 'hover');
  assert.equal(after({ show: 'hover' }, toggledShow, choose('key'), toggledShow, toggledShow), 'key');
  for (const shownAs of [undefined, 'never', 'so', 7]) {
    assert.equal(after({ show: 'never', shownAs }, toggledShow), 'always');
  }
});
