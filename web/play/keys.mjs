// SPDX-License-Identifier: GPL-3.0-or-later

// Which key means what. Escape is missing on purpose: the player keeps it.

const actions = new Map(Object.entries({
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
}));

/**
 * The action of a key press, or null. Letters count by what they write, and by their place where the keyboard
 * writes no Latin ones.
 */
export function actionOfKey({ key, code = '', ctrlKey, altKey, metaKey }) {
  if (ctrlKey || altKey || metaKey) return null;
  const written = key.toLowerCase();
  const placed = /^Key[A-Z]$/.test(code) && !/^[a-z]$/.test(written) ? code.slice(3).toLowerCase() : '';
  const bracket = { BracketLeft: '[', BracketRight: ']' }[code] ?? '';
  return actions.get(written) ?? actions.get(placed) ?? actions.get(bracket) ?? null;
}
