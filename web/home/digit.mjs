// SPDX-License-Identifier: GPL-3.0-or-later

/**
 * The digit of a key press, or null. What the key writes counts first; where the digits' row writes other signs without
 * Shift, its keys are taken by their place.
 */
export function digitOf({ key, code = '', shiftKey = false }) {
  if (/^\d$/.test(key)) return Number(key);
  return !shiftKey && /^Digit\d$/.test(code) ? Number(code.slice(5)) : null;
}
