// SPDX-License-Identifier: GPL-3.0-or-later

import { formOf, wordsOf } from '../lines/linetext.mjs';

/**
 * Where else one of the forms (or the phrase itself) stands: { count, cues }, count of all lines but the one given,
 * cues at most so many of them, those after it first.
 */
export function occurrences(cues, forms, except, atMost) {
  const wanted = new Set(forms.map(formOf));
  const phrases = [...wanted].filter((form) => form.includes(' '));
  const has = (cue) => {
    const words = wordsOf(cue.lines.join('\n')).map((word) => formOf(word.text));
    if (words.some((word) => wanted.has(word))) return true;
    const text = ` ${words.join(' ')} `;
    return phrases.some((phrase) => text.includes(` ${phrase} `));
  };
  const texts = new Set([except.lines.join()]);
  const isNew = (cue) => !texts.has(cue.lines.join()) && texts.add(cue.lines.join()); // a refrain is told once
  const found = cues.filter((cue) => cue !== except && has(cue) && isNew(cue));
  const after = found.filter((cue) => cue.startMs >= except.startMs);
  const before = found.filter((cue) => cue.startMs < except.startMs);
  return { count: found.length, cues: [...after, ...before].slice(0, atMost) };
}
