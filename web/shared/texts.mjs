// SPDX-License-Identifier: GPL-3.0-or-later

// The words of the interface. One file a language in web/texts, all with the same keys; a text has places for values
// in braces, and forms by number where it needs them: { one: '{count} line', other: '{count} lines' }.

import english from '../texts/en.mjs';

/** Two-letter codes of the languages that the pages speak, by the code of the learner's language. */
export const interfaceLanguages = new Map([
  ['eng', 'en'], ['fra', 'fr'], ['deu', 'de'], ['spa', 'es'], ['por', 'pt'],
  ['ita', 'it'], ['pol', 'pl'], ['rus', 'ru'], ['tur', 'tr'], ['ara', 'ar'],
]);
const fromRightToLeft = new Set(['ar']);

let texts = english;
let language = 'en';
let asked = 0;
let plurals = new Intl.PluralRules('en');
let numbers = new Intl.NumberFormat('en');
let decimals = new Map(); // by how many digits follow the decimal sign

/**
 * code: of the learner's language ("fra"), or one of the two-letter codes; English where the pages do not speak it.
 * Of several that are asked for one soon after the other the last one counts. Throws when the texts do not come.
 */
export async function speak(code) {
  asked += 1;
  const call = asked;
  const isSpoken = [...interfaceLanguages.values()].includes(code);
  const wanted = isSpoken ? code : interfaceLanguages.get(code) ?? 'en';
  const found = wanted === 'en' ? english : (await import(`../texts/${wanted}.mjs`)).default;
  if (call !== asked) return;
  texts = found;
  language = wanted;
  plurals = new Intl.PluralRules(wanted);
  numbers = new Intl.NumberFormat(numberLocale());
  decimals = new Map();
}

/**
 * In which language the pages speak to a learner. interfaceOf: { language, follows } of the preferences: a choice of its
 * own (two letters) counts first; then the learner's language, once it was chosen; before that the desktop's.
 */
export function languageFor({ language: own, follows }, learnersCode, desktopTag) {
  return own || (follows ? learnersCode : desktopTag.slice(0, 2));
}

/** The two-letter code of what the pages speak now. */
export const spokenLanguage = () => language;

/** For numbers in the interface: with the digits of its times and speeds, also where a language has others. */
export const numberLocale = () => `${language}-u-nu-latn`;

export const number = (value) => numbers.format(value);

/** A number with so many digits after its decimal sign: "1.0", in French "1,0". */
export function decimal(value, digits) {
  if (!decimals.has(digits)) {
    const format = { minimumFractionDigits: digits, maximumFractionDigits: digits };
    decimals.set(digits, new Intl.NumberFormat(numberLocale(), format));
  }
  return decimals.get(digits).format(value);
}

/** Whether there is such a text, for keys that come from elsewhere. */
export const hasText = (key) => Object.hasOwn(english, key);

/** A text with its values; of several forms the one for values.count. */
export function t(key, values = {}) {
  const found = texts[key] ?? english[key];
  if (found === undefined) throw new Error(`There is no text "${key}".`);
  const text = typeof found === 'string' ? found : found[plurals.select(values.count)] ?? found.other;
  return text.replace(/\{(\w+)\}/g, (place, name) => {
    const value = values[name];
    return typeof value === 'number' ? number(value) : value ?? place;
  });
}

const places = [
  ['text', (element, text) => { element.textContent = text; }],
  ['label', (element, text) => { element.setAttribute('aria-label', text); }],
  ['title', (element, text) => { element.title = text; }],
  ['placeholder', (element, text) => { element.placeholder = text; }],
];

/** Fills what names its text by data-text, data-label (for screen readers), data-title or data-placeholder. */
export function translate(document) {
  document.documentElement.lang = language;
  document.documentElement.dir = fromRightToLeft.has(language) ? 'rtl' : 'ltr';
  for (const [name, put] of places) {
    for (const element of document.querySelectorAll(`[data-${name}]`)) put(element, t(element.dataset[name]));
  }
}
