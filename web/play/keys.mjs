// SPDX-License-Identifier: GPL-3.0-or-later

// Which key means what. Escape is missing on purpose: the player keeps it.

const plain = new Map(Object.entries({
  ' ': 'togglePlay',
  a: 'previousLine',
  d: 'nextLine',
  s: 'replayLine',
  arrowleft: 'back',
  arrowright: 'forward',
  arrowup: 'louder',
  arrowdown: 'softer',
  m: 'toggleMute',
  '[': 'slower',
  ']': 'faster',
  backspace: 'normalSpeed',
  t: 'subtitlePanel',
  j: 'nextSubtitle',
  z: 'linesEarlier',
  g: 'linesEarlier',
  h: 'linesLater',
  c: 'linesAsTheyAre',
}));
const withShift = new Map([['z', 'linesLater']]);
const withControlAndShift = new Map([['arrowleft', 'previousLineIsNow'], ['arrowright', 'nextLineIsNow']]);

/**
 * The action of a key press, or null. Letters count by what they write, and by their place where the keyboard
 * writes no Latin ones.
 */
export function actionOfKey({ key, code = '', ctrlKey, altKey, metaKey, shiftKey }) {
  if (altKey || metaKey || (ctrlKey && !shiftKey)) return null;
  const written = key.toLowerCase();
  if (ctrlKey) return withControlAndShift.get(written) ?? null;
  const placed = /^Key[A-Z]$/.test(code) && !/^[a-z]$/.test(written) ? code.slice(3).toLowerCase() : '';
  const bracket = { BracketLeft: '[', BracketRight: ']' }[code] ?? '';
  const shifted = shiftKey ? withShift.get(written) ?? withShift.get(placed) : undefined;
  return shifted ?? plain.get(written) ?? plain.get(placed) ?? plain.get(bracket) ?? null;
}
