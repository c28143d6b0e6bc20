// SPDX-License-Identifier: GPL-3.0-or-later

// A film's title as people write it, out of the name of its file.

const firstYear = 1900;
const lastYear = 2039;
const extension = /\.(?=\d{0,3}[a-z])[a-z\d]{2,4}$/i;
const group = /^\s*\[[^\]]*\]\s*/;
const episode = /(?:^|[\s(\-–[])(?:s(\d{1,2})\s?e(\d{1,3})(?:-?e?\d{1,3})?|(\d{1,2})x(\d{2,3}))(?=$|[\s)\-–\]])/i;
// From here on a name tells of the file and no longer of the film.
const signs = [
  '\\d{3,4}[pi]', '4k', 'uhd', 'web[- ]?(?:dl|rip)', 'web(?=\\s*[xh]\\s?26)', 'blu-?ray', 'b[dr]rip', 'dvd(?:rip|scr)?',
  'hd(?:tv|rip|r)', '[xh]\\s?26[45]', 'hevc', 'av1', 'xvid', 'divx', 'aac', 'ac3', 'dts', '\\d{1,2}bit', 'remux',
];
const technical = new RegExp(`[\\s([{](?:${signs.join('|')})(?![a-z])`, 'i');
const separator = /[\s\-–_.,([{]/;
// As long as a file's name can be; an address may have a longer one.
const mostCharacters = 255;

/** Without what parts words at both ends. */
function trimmed(text) {
  let [start, end] = [0, text.length];
  while (start < end && separator.test(text[start])) start += 1;
  while (start < end && separator.test(text[end - 1])) end -= 1;
  return text.slice(start, end);
}

const tidy = (text) => trimmed(text).replace(/\s+/g, ' ');

// Half of a letter is none.
const cut = (text) => text.slice(0, mostCharacters).replace(/[\ud800-\udbff]$/, '');

function withoutSigns(text) {
  const at = text.search(technical);
  return at < 0 ? text : text.slice(0, at);
}

// Names in lower case only get a capital for each word.
function capitals(text) {
  if (/\p{Lu}/u.test(text)) return text;
  return text.replace(/(^|\s)(\p{Ll})/gu, (_, gap, letter) => gap + letter.toUpperCase());
}

function withoutYear(text) {
  const years = [...text.matchAll(/[\s([]((?:19|20)\d\d)(?=$|[\s)\]])/g)]
    .filter(([, year]) => Number(year) >= firstYear && Number(year) <= lastYear);
  const last = years.pop();
  return last ? { text: text.slice(0, last.index), year: Number(last[1]) } : { text, year: null };
}

/** { title, year, season, episode, name }: numbers or null; name: of the episode, often empty. */
export function filmTitle(fileName) {
  const bare = cut(fileName.replace(extension, '')).replace(group, '');
  const spaced = bare.replace(/_/g, ' ').replace(/\s/.test(bare) ? /$^/ : /\./g, ' ');
  const plain = withoutSigns(spaced);
  const found = episode.exec(plain);
  const before = withoutYear(found ? plain.slice(0, found.index) : plain);
  const title = capitals(tidy(before.text));
  const shown = title || tidy(plain) || cut(fileName);
  const parts = { title: shown, year: before.year, season: null, episode: null, name: '' };
  if (!found || !title) return parts;
  const behind = withoutYear(plain.slice(found.index + found[0].length));
  return {
    ...parts,
    season: Number(found[1] ?? found[3]),
    episode: Number(found[2] ?? found[4]),
    name: capitals(tidy(behind.text)),
  };
}
