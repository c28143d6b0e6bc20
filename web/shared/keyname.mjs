// SPDX-License-Identifier: GPL-3.0-or-later

import { hasText, t } from './texts.mjs';

const signs = { arrowleft: '←', arrowright: '→', arrowup: '↑', arrowdown: '↓', backspace: '⌫', mediaplaypause: '⏯' };

const named = (name, other) => (hasText(`keyname.${name}`) ? t(`keyname.${name}`) : other);

function alone(key) {
  if (key.length === 1 || /^f\d+$/.test(key)) return key.toUpperCase();
  return signs[key] ?? named(key, key);
}

/** A combination, as the keymap writes it, with what stands on the keyboards of the interface's language. */
export function keyName(combination) {
  const [, modifiers, key] = /^((?:\w+\+)*)(.+)$/.exec(combination);
  return [...modifiers.split('+').slice(0, -1).map((each) => named(each.toLowerCase(), each)), alone(key)].join('+');
}
