// SPDX-License-Identifier: GPL-3.0-or-later

// Where searched words stand in a line: case, accents and signs do not count, as in the service's search.

const fold = (word) => word.normalize('NFD').replace(/\p{M}/gu, '').toLowerCase();

const wordsOf = (text) => [...text.matchAll(/[\p{L}\p{N}\p{M}]+/gu)].map((found) => ({
  folded: fold(found[0]), start: found.index, end: found.index + found[0].length,
}));

/** Places { start, end } in UTF-16 units where the words of searched follow each other; the last may go on. */
export function placesOf(text, searched, { wholeWord = false } = {}) {
  const wanted = wordsOf(searched).map((word) => word.folded);
  const words = wordsOf(text);
  const places = [];
  if (wanted.length === 0) return places;
  const last = wanted.length - 1;
  for (let at = 0; at + last < words.length; at += 1) {
    const fits = wanted.every((each, i) => {
      const { folded } = words[at + i];
      return folded === each || (i === last && !wholeWord && folded.startsWith(each));
    });
    if (!fits) continue;
    places.push({ start: words[at].start, end: words[at + last].end });
    at += last;
  }
  return places;
}

/** Where a word was met in its line: { start, end }, null when it does not stand there. */
export function placeOfWord(line, form) {
  return placesOf(line, form, { wholeWord: true })[0] ?? null;
}

/** Fills the element with the text, what is at the places as <mark>. */
export function showMarked(element, text, places) {
  const parts = [];
  let from = 0;
  for (const { start, end } of places) {
    const mark = element.ownerDocument.createElement('mark');
    mark.textContent = text.slice(start, end);
    parts.push(text.slice(from, start), mark);
    from = end;
  }
  element.replaceChildren(...parts, text.slice(from));
}
