// SPDX-License-Identifier: GPL-3.0-or-later

import { actionGroups } from '../keys/keymap.mjs';

// As combinationsOf() in the key map writes them: what is held in its order, then the key in lower case.
const written = /^(?:Ctrl\+)?(?:Alt\+)?(Shift\+)?(\+|[^\s+]+)$/u;
const isSign = (key) => [...key].length === 1 && !/[\p{L}\d]/u.test(key);
const never = new Set(['escape', 'control', 'shift', 'alt', 'altgraph', 'meta', 'dead', 'process', 'unidentified']);

function isCombination(text) {
  const [whole, shift, key] = (typeof text === 'string' && written.exec(text)) || [];
  if (!whole || key !== key.toLowerCase() || never.has(key)) return false;
  return !(shift && isSign(key)); // which is part of the sign
}

/** Of what is kept as own keys, what a key press can match: { action: [combination, ...] }. Anything may be kept. */
export function keptKeys(kept) {
  const keys = {};
  for (const action of actionGroups.flatMap(([, actions]) => Object.keys(actions))) {
    if (Array.isArray(kept?.[action])) keys[action] = [...new Set(kept[action].filter(isCombination))];
  }
  return keys;
}
