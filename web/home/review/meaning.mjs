// SPDX-License-Identifier: GPL-3.0-or-later

const mostTranslations = 5;

/**
 * What a look-up tells of a word, in short: { translations, pronunciation, definition }. lookup: the service's reply
 * to the word in its line; the headword of this lemma counts, else the first that has a meaning.
 */
export function meaningOf(lookup, lemma) {
  const heads = lookup.headwords ?? [];
  const telling = (head) => head.entries.length > 0 || head.english.length > 0;
  const head = heads.find((each) => each.word === lemma && telling(each)) ?? heads.find(telling);
  if (!head) return { translations: [], pronunciation: '', definition: '' };
  const senses = head.entries.flatMap((entry) => entry.senses);
  return {
    translations: [...new Set(senses.flatMap((sense) => sense.translations))].slice(0, mostTranslations),
    pronunciation: head.entries.find((entry) => entry.pronunciation)?.pronunciation ?? '',
    definition: head.english[0]?.definition ?? '',
  };
}
