// SPDX-License-Identifier: GPL-3.0-or-later

import assert from 'node:assert/strict';
import { test } from 'node:test';
import { Keymap, actionGroups, groupOf } from '../../web/play/keys/keymap.mjs';
import { keptKeys } from '../../web/play/settings/keptkeys.mjs';
import { keyName } from '../../web/shared/keyname.mjs';
import { speak } from '../../web/shared/texts.mjs';

const keymap = new Keymap();
const press = (key, more = {}, isCardOpen = false) => keymap.actionOf({ key, ...more }, isCardOpen);

test('keys mean what they say, whatever the keyboard writes', () => {
  assert.equal(press(' '), 'togglePlay');
  assert.equal(press('A'), 'previousLine'); // with the capitals locked
  assert.equal(press('ф', { code: 'KeyA' }), 'previousLine');
  assert.equal(press('q', { code: 'KeyA' }), 'autoPause'); // a French keyboard's q is not an a
  assert.equal(press('ü', { code: 'BracketLeft' }), 'slower');
  assert.equal(press('&', { code: 'Digit1' }), 'toggleLearned'); // a French keyboard's digits lie under Shift
  assert.equal(press('ArrowLeft'), 'back');
  assert.equal(press('Z', { shiftKey: true }), 'linesLater');
  assert.equal(press('Я', { shiftKey: true, code: 'KeyZ' }), 'linesLater');
  assert.equal(press('ArrowLeft', { ctrlKey: true, shiftKey: true }), 'previousLineIsNow');
  assert.equal(press('?', { shiftKey: true }), 'keySheet'); // Shift is part of the sign
  assert.equal(press('{', {}), 'halfSpeed');
  assert.equal(press('a', { ctrlKey: true }), null);
  assert.equal(press('Escape'), null);
  assert.equal(press('Shift', { shiftKey: true }), null);
  assert.equal(press('constructor'), null);
});

test('while a card is open its keys come first, and the others stay', () => {
  assert.equal(press('1', {}, true), 'grade1');
  assert.equal(press('1'), 'toggleLearned');
  assert.equal(press('ArrowRight', { shiftKey: true }, true), 'longerPhrase');
  assert.equal(press(' ', {}, true), 'togglePlay');
});

test('no key has two meanings at first', () => {
  for (const layer of [['card'], actionGroups.map(([name]) => name).filter((name) => name !== 'card')]) {
    const keys = actionGroups.filter(([name]) => layer.includes(name)).flatMap(([, actions]) => Object.values(actions).flat());
    assert.deepEqual(keys.filter((key, i) => keys.indexOf(key) !== i), []);
  }
});

test('own keys take the place of the defaults, and a key that is taken is told', () => {
  const own = new Keymap({ togglePlay: ['k'], wordColours: [], broken: 5, louder: 'x' });
  assert.equal(own.actionOf({ key: 'k' }), 'togglePlay');
  assert.equal(own.actionOf({ key: ' ' }), null);
  assert.equal(own.actionOf({ key: 'ArrowUp' }), 'louder');
  assert.equal(own.conflict('replayLine', 'k'), 'togglePlay');
  assert.equal(own.conflict('togglePlay', 'k'), null);
  assert.equal(own.conflict('replayLine', '1'), 'toggleLearned');
  assert.equal(own.conflict('grade1', 'v'), null); // the card's keys may hide others
  assert.equal(groupOf('grade1'), 'card');
});

test('keys are written as the keyboards of the language have them', async () => {
  const combinations = ['space', 'Ctrl+arrowleft', 'Shift+a', 'f11', ',', 'Ctrl+=', 'Ctrl++', 'Alt+pagedown', 'capslock'];
  assert.deepEqual(combinations.map(keyName),
    ['Space', 'Ctrl+←', 'Shift+A', 'F11', ',', 'Ctrl+=', 'Ctrl++', 'Alt+PgDn', 'capslock']);
  await speak('deu');
  assert.deepEqual(combinations.map(keyName),
    ['Leertaste', 'Strg+←', 'Umschalt+A', 'F11', ',', 'Strg+=', 'Strg++', 'Alt+Bild ab', 'capslock']);
  await speak('eng');
});

test('of kept keys only what a key press can match counts', () => {
  const kept = {
    louder: ['Ctrl+Alt+Shift+a', 'f12', '+', 'Ctrl++', 'ж', '?'],
    softer: [7, null, '', ' ', 'A', 'Shift+Ctrl+a', 'ctrl+a', 'Ctrl+', 'Shift+?', 'escape', 'space', 'space'],
    back: 'a',
    nothing: ['a'],
  };
  assert.deepEqual(keptKeys(kept), { louder: kept.louder, softer: ['space'] });
  assert.deepEqual([keptKeys(null), keptKeys([])], [{}, {}]);
  const written = actionGroups.map(([, keys]) => keptKeys(keys));
  assert.deepEqual(written, actionGroups.map(([, keys]) => keys), 'the defaults are written so');
});
