// SPDX-License-Identifier: GPL-3.0-or-later

// Finds text whatever its case and its marks: "cafe" finds "Café", "strasse" finds "Straße".

const plainLetters = {
  'ß': 'ss', 'æ': 'ae', 'œ': 'oe', 'ø': 'o', 'ł': 'l', 'đ': 'd', 'ð': 'd', 'þ': 'th', 'ı': 'i', 'ς': 'σ', '’': '\'',
  '‘': '\'', '“': '"', '”': '"', '–': '-', '—': '-', '\n': ' ',
};
const special = new RegExp(`[${Object.keys(plainLetters).join('')}]`, 'g');
const folded = new Map();

/** A text as it is compared. */
export function foldText(text) {
  const lower = text.toLowerCase();
  if (/^[\x20-\x7e]*$/.test(lower)) return lower;
  return lower.normalize('NFKD').replace(/\p{M}/gu, '').replace(special, (letter) => plainLetters[letter]);
}

function foldLetter(letter) {
  let plain = folded.get(letter);
  if (plain === undefined) {
    plain = foldText(letter);
    folded.set(letter, plain);
  }
  return plain;
}

// places: where in the text each unit comes from, and the text's end.
function fold(text) {
  let plain = '';
  const places = [];
  let place = 0;
  for (const letter of text) {
    const letters = foldLetter(letter);
    for (let i = 0; i < letters.length; i += 1) places.push(place);
    plain += letters;
    place += letter.length;
  }
  places.push(place);
  return { plain, places };
}

/** Where wanted, folded, stands in the text: [{ start, end }, ...]. */
export function findIn(text, wanted) {
  if (wanted === '') return [];
  const { plain, places } = fold(text);
  const found = [];
  for (let at = plain.indexOf(wanted); at >= 0; at = plain.indexOf(wanted, at + wanted.length)) {
    const start = places[at];
    let end = at + wanted.length;
    // A letter's marks go with it, and a letter that stands for two goes whole.
    while (end < places.length - 1 && places[end] === places[end - 1]) end += 1;
    if (start >= (found.at(-1)?.end ?? 0)) found.push({ start, end: places[end] });
  }
  return found;
}
