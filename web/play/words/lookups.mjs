// SPDX-License-Identifier: GPL-3.0-or-later

import { sentenceAround } from '../lines/linetext.mjs';

/**
 * What a card has to show for a picked word or phrase: { form, whole, headwords, near, sources, language,
 * hasDictionary }, as the service answers; meant: the headword that was asked for, where that is certain; offset: of one
 * word, where its line begins in the text that the headwords' places are of. A phrase that no dictionary has stands first
 * all the same, so that it can be saved and taught.
 * picked: { text, start, end, isPhrase, before, after }, before and after the texts of the lines around.
 */
export async function lookUpPicked(api, { text, start, end, isPhrase, before, after }) {
  if (!isPhrase) {
    const sentence = sentenceAround(text, before, after, start, end);
    const reply = await api.lookUp(sentence.text, sentence.offset + start);
    return { ...reply, offset: sentence.offset };
  }
  const phrase = text.slice(start, end).replace(/\s+/g, ' ');
  const reply = await api.lookUp(phrase, 0);
  const whole = reply.headwords.find(({ start, length }) => start === 0 && length === phrase.length);
  if (whole) return { ...reply, form: phrase, meant: whole };
  const own = ownHeadword(phrase, await api.word(phrase));
  // "look forward" of "look forward to"
  const begun = reply.headwords.find((each) => each.isPhrase && each.start === 0);
  return { ...reply, form: phrase, headwords: [own, ...reply.headwords], meant: begun ?? own };
}

function ownHeadword(phrase, { lemma, gloss, status }) {
  return { word: lemma, isPhrase: true, start: 0, length: phrase.length, rank: 0, gloss, status, entries: [], english: [] };
}

/** Entries of the same part of speech together: [{ partOfSpeech, senses }], senses as the entries have them. */
export function byPartOfSpeech(entries) {
  const groups = new Map();
  for (const { partOfSpeech, senses } of entries) {
    if (!groups.has(partOfSpeech)) groups.set(partOfSpeech, []);
    groups.get(partOfSpeech).push(...senses);
  }
  return [...groups].map(([partOfSpeech, senses]) => ({ partOfSpeech, senses }));
}

// "a little" of "a little boat", "at the": whoever clicks one of the words means the word.
const hasArticleAtEnd = ({ word, isPhrase }) => isPhrase && /^(an?|the) | (an?|the)$/i.test(word);

/** Which headword to show first: one that is told in the learner's language, or a phrase; null when there is none. */
export function likeliest(headwords) {
  const isTold = ({ gloss, entries, english, isPhrase }) => gloss !== '' || entries.length > 0 || (isPhrase && english.length > 0);
  const told = headwords.filter(isTold);
  return told.find((each) => !hasArticleAtEnd(each)) ?? told[0] ?? headwords[0] ?? null;
}

/** The first meaning, as short as it can be told; empty when there is none. */
export function shortMeaning({ gloss, entries, english }) {
  if (gloss) return gloss;
  const senses = entries.flatMap((entry) => entry.senses);
  const told = senses.find(({ translations }) => translations.length > 0);
  if (told) return told.translations.slice(0, 3).join(', ');
  return senses[0]?.definition || english[0]?.definition || '';
}
