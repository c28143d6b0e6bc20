// SPDX-License-Identifier: GPL-3.0-or-later
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { playDefaults } from '../../web/play/defaults.mjs';
import { toggledShow, withShow } from '../../web/play/settings/lineslook.mjs';
import { LooksReset } from '../../web/play/settings/looksreset.mjs';
import { Preferences } from '../../web/shared/preferences.mjs';

const preferencesOf = (context) => {
  context.mock.timers.enable({ apis: ['setTimeout'] }); // nothing is saved
  return new Preferences({}, playDefaults);
};

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

test('how a line was shown before it was hidden is kept with its look', (context) => {
  const preferences = preferencesOf(context);
  preferences.change('learned', withShow(preferences.get('learned'), 'pause'));
  for (const shown of ['never', 'pause']) {
    preferences.change('learned', toggledShow(preferences.get('learned')));
    assert.equal(preferences.get('learned').show, shown);
  }
});

test('a reset can be taken back until something is set, also when it is pressed twice', (context) => {
  const preferences = preferencesOf(context);
  const reset = new LooksReset(preferences, ['learned', 'lines']);
  reset.reset();
  assert.equal(reset.canUndo, false, 'nothing has changed');
  preferences.change('learned', { sizePercent: 150, show: 'pause' });
  preferences.change('lines', { colours: false });
  reset.reset();
  reset.reset();
  assert.deepEqual(preferences.get('learned'), playDefaults.learned);
  preferences.change('bar', { showsRemaining: true });
  assert.equal(reset.canUndo, true, 'that is no look');
  reset.undo();
  const { sizePercent, show } = preferences.get('learned');
  assert.deepEqual([sizePercent, show, preferences.get('lines').colours, reset.canUndo], [150, 'pause', false, false]);
  reset.reset();
  preferences.change('lines', { raisedPercent: 10 });
  assert.equal(reset.canUndo, false);
  preferences.change('lines', { raisedPercent: 0 });
  assert.equal(reset.canUndo, false);
});
