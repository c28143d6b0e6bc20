// SPDX-License-Identifier: GPL-3.0-or-later

import { button, create } from '../../shared/elements.mjs';
import { t } from '../../shared/texts.mjs';
import { titleTexts } from '../films/filmcard.mjs';
import { placeOfWord, showMarked } from '../marking.mjs';

export const statuses = ['new', 'learning1', 'learning2', 'learning3', 'learning4', 'known', 'ignored'];

/**
 * The row of a word. actions: { meaning(word, isWanted) promises what a dictionary tells, setGloss(word, gloss),
 * setStatus(word, status), play(soundUrl), find(word), remove(word),
 * learnerTag() }.
 */
export function wordRow(document, word, actions) {
  const make = (...rest) => create(document, ...rest);
  if (!word) return make('div', { className: 'word-row is-coming' });
  const sighting = word.sightings[0];
  const row = make('div', { className: `word-row status-${word.status}` },
    make('span', { className: 'head' },
      make('b', { lang: 'en', dir: 'auto', textContent: word.lemma, title: word.lemma }),
      glossField(document, word, actions)));
  if (sighting) row.append(whereMet(document, sighting));
  const hear = () => actions.play(sighting.soundUrl);
  row.append(make('span', { className: 'tools' },
    statusChoice(document, word, actions),
    tool(document, 'hear', t('words.hear', { word: word.lemma }), hear, !sighting?.soundUrl),
    tool(document, 'find', t('words.find', { word: word.lemma }), () => actions.find(word)),
    tool(document, 'remove', t('words.remove', { word: word.lemma }), () => actions.remove(word))));
  return row;
}

// What the learner writes counts; without it the dictionary's word shows in its place.
function glossField(document, word, actions) {
  const field = create(document, 'input', {
    className: 'gloss', defaultValue: word.gloss, maxLength: 2000, lang: actions.learnerTag(), dir: 'auto',
    autocomplete: 'off', spellcheck: false,
    ariaLabel: t('words.meaningOf', { word: word.lemma }), title: t('words.changeMeaning'),
  });
  if (!word.gloss) {
    const told = actions.meaning(word, () => field.isConnected);
    told.then((text) => { field.placeholder = text || t('words.noMeaning'); });
  }
  field.addEventListener('change', () => actions.setGloss(word, field.value.trim()));
  field.addEventListener('keydown', (event) => {
    if (event.key === 'Escape') field.value = word.gloss;
    if (event.key === 'Enter' || event.key === 'Escape') field.blur();
  });
  return field;
}

function whereMet(document, { line, form, fileName, translation }) {
  const text = line.replace(/\n/g, ' ');
  const shown = create(document, 'span', { lang: 'en', dir: 'auto' });
  const place = placeOfWord(text, form);
  showMarked(shown, text, place ? [place] : []);
  return create(document, 'span', { className: 'met', title: [line, translation].filter(Boolean).join('\n') },
    create(document, 'span', { className: 'line' }, shown),
    ...(fileName ? [create(document, 'span', { className: 'of' },
      create(document, 'bdi', { textContent: titleTexts(fileName).title }))] : []));
}

function statusChoice(document, word, actions) {
  const label = t('words.statusOf', { word: word.lemma });
  const choice = create(document, 'select', { className: 'status', ariaLabel: label },
    ...statuses.map((status) => create(document, 'option', {
      value: status, textContent: t(`status.${status}`), selected: status === word.status,
    })));
  choice.addEventListener('change', () => actions.setStatus(word, choice.value));
  return choice;
}

function tool(document, name, label, pressed, isOff = false) {
  const made = button(document, { className: `tool ${name}`, ariaLabel: label, title: label }, pressed);
  made.disabled = isOff;
  return made;
}
