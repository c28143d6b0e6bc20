// SPDX-License-Identifier: GPL-3.0-or-later

import { create } from '../../shared/elements.mjs';
import { hasText, spokenLanguage, t } from '../../shared/texts.mjs';
import { byPartOfSpeech } from './lookups.mjs';

const sensesAtOnce = 4;

/** What a word means in the learner's language: the learner's own meaning first, then by part of speech. */
export function meaningsPart(document, headword, { hasDictionary, languageTag }) {
  const parts = [];
  if (headword.gloss) parts.push(create(document, 'p', { className: 'own', dir: 'auto', textContent: headword.gloss }));
  for (const group of byPartOfSpeech(headword.entries)) parts.push(...groupPart(document, group, languageTag));
  if (headword.entries.length === 0 && !hasDictionary) parts.push(create(document, 'p', { className: 'quiet' }, t('card.noDictionary')));
  return parts;
}

// As the service names it, in the interface's language; what the texts do not know stays English.
function kindOf(partOfSpeech) {
  const key = `part.${partOfSpeech}`;
  return hasText(key) ? { lang: spokenLanguage(), textContent: t(key) } : { lang: 'en', textContent: partOfSpeech };
}

function groupPart(document, { partOfSpeech, senses }, languageTag) {
  const items = senses.map((sense) => senseItem(document, sense, languageTag));
  const list = create(document, 'ol', {}, ...items.slice(0, sensesAtOnce));
  const parts = partOfSpeech ? [create(document, 'h3', kindOf(partOfSpeech)), list] : [list];
  if (items.length > sensesAtOnce) {
    const rest = create(document, 'ol', { start: sensesAtOnce + 1 }, ...items.slice(sensesAtOnce));
    parts.push(create(document, 'details', {},
      create(document, 'summary', {}, t('card.moreMeanings', { count: items.length - sensesAtOnce })), rest));
  }
  return parts;
}

function senseItem(document, { translations, definition, examples }, languageTag) {
  const item = create(document, 'li', {});
  if (translations.length > 0) {
    item.append(create(document, 'span', { className: 'translations', lang: languageTag, dir: 'auto', textContent: translations.join(', ') }));
  }
  if (definition) item.append(create(document, 'span', { className: 'definition', dir: 'auto', textContent: definition }));
  const example = examples[0];
  if (example) {
    item.append(create(document, 'span', { className: 'example' },
      create(document, 'span', { lang: 'en', textContent: example.text }),
      example.translation ? create(document, 'span', { lang: languageTag, dir: 'auto', textContent: ` – ${example.translation}` }) : ''));
  }
  return item;
}

/** What it means in English; isOpen where there is nothing else. */
export function englishPart(document, english, isOpen) {
  if (english.length === 0) return [];
  const items = english.slice(0, 6).map(({ partOfSpeech, definition, examples, synonyms }) => create(document, 'li', { lang: 'en' },
    create(document, 'span', { className: 'kind', ...kindOf(partOfSpeech) }), ' ',
    create(document, 'span', { textContent: definition }),
    examples[0] ? create(document, 'span', { className: 'example', textContent: `“${examples[0]}”` }) : '',
    synonyms.length > 0 ? create(document, 'span', { className: 'example', textContent: `= ${synonyms.slice(0, 5).join(', ')}` }) : ''));
  return [create(document, 'details', { open: isOpen },
    create(document, 'summary', {}, t('card.inEnglish')), create(document, 'ul', {}, ...items))];
}

/** Where it is from, with the licences as their makers put them. */
export function sourcesPart(document, sources) {
  if (sources.length === 0) return [];
  return [create(document, 'details', {},
    create(document, 'summary', {}, t('card.sources')),
    ...sources.map(({ name, licence }) => create(document, 'p', { lang: 'en', textContent: licence ? `${name}: ${licence}` : name })))];
}
