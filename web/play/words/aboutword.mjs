// SPDX-License-Identifier: GPL-3.0-or-later

import { button, create } from '../../shared/elements.mjs';
import { t } from '../../shared/texts.mjs';
import { timeText } from '../../shared/timetext.mjs';
import { formOf } from '../lines/linetext.mjs';
import { shortMeaning } from './lookups.mjs';
import { occurrences } from './occurrences.mjs';

const elsewhereShown = 4;

/**
 * How the word stands in the line, how common it is, how often the film has it.
 * picked: a PickedWord that was told of; word: what the card calls it; filmWord: as FilmWords has it.
 */
export function aboutPart(document, { reply: { form, whole }, headword }, word, filmWord) {
  const told = [];
  const tell = (textContent, more = {}) => told.push(create(document, 'span', { ...more, textContent }));
  if (whole) tell(`${form} = ${whole}`, { lang: 'en' });
  else if (isOtherForm(headword, word, form, filmWord)) tell(form, { lang: 'en' });
  if (headword?.rank > 0) tell(t('card.rank', { rank: headword.rank }), { title: t('card.rankMeans') });
  const { count = 0, forms = [] } = filmWord ?? {};
  if (count > 1) tell(t('card.times', { count }));
  if (forms.length > 1) tell(forms.join(', '), { lang: 'en' });
  return told;
}

// Told by itself only where the film's forms, which follow, do not have it.
function isOtherForm(headword, word, form, filmWord) {
  if (headword?.isPhrase || formOf(form) === formOf(word)) return false;
  return (filmWord?.forms.length ?? 0) < 2;
}

/** The headwords to choose from, where there are several; chosen(headword). */
export function choicesPart(document, { reply: { headwords }, headword }, chosen) {
  if (headwords.length < 2) return [];
  return headwords.map((each) => button(document, {
    className: 'choice', lang: 'en', ariaPressed: String(each === headword), textContent: each.word,
  }, () => chosen(each)));
}

/** Of a phrase that nobody has, what its words mean, as far as that is told; chosen(headword). */
export function wordsPart(document, { reply: { headwords }, headword }, chosen) {
  const { isPhrase, gloss, entries, english } = headword;
  if (!isPhrase || gloss || entries.length > 0 || english.length > 0) return [];
  const told = headwords.filter((each) => each !== headword && shortMeaning(each));
  if (told.length === 0) return [];
  return [create(document, 'ul', { className: 'its-words' }, ...told.map((each) => create(document, 'li', {},
    button(document, { className: 'choice', lang: 'en', textContent: each.word }, () => chosen(each)),
    create(document, 'span', { dir: 'auto', textContent: shortMeaning(each) }))))];
}

/** That nobody has the word, and which ones are written like it; chosen(word). */
export function nothingPart(document, near, chosen) {
  const said = create(document, 'p', { className: 'quiet' }, t('card.nothing'));
  if (near.length === 0) return [said];
  return [said, create(document, 'p', { className: 'near' }, t('card.near'), ' ',
    ...near.map((word) => button(document, { className: 'choice', lang: 'en', textContent: word }, () => chosen(word))))];
}

/** The other lines of the film that have one of the forms; goTo(cue). */
export function elsewherePart(document, cues, forms, except, goTo) {
  const found = occurrences(cues, forms, except, elsewhereShown);
  if (found.count === 0) return [];
  return [
    create(document, 'h3', {}, t('card.elsewhere', { count: found.count })),
    create(document, 'ul', {}, ...found.cues.map((each) => create(document, 'li', {},
      button(document, { className: 'line-link' }, () => goTo(each),
        create(document, 'span', { className: 'time' }, timeText(each.startMs)),
        create(document, 'span', { lang: 'en', textContent: each.lines.join(' ') }))))),
  ];
}
