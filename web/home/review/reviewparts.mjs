// SPDX-License-Identifier: GPL-3.0-or-later

// What the review is drawn of. Each function makes elements out of what it is given, and knows no session.

import { button, create } from '../../shared/elements.mjs';
import { keyName } from '../../shared/keyname.mjs';
import { t } from '../../shared/texts.mjs';
import { timeText } from '../../shared/timetext.mjs';
import { titleTexts } from '../films/filmcard.mjs';
import { placeOfWord, showMarked } from '../marking.mjs';
import { grades, intervalsOf, lengthText, outcomeText } from './intervals.mjs';

const svgName = 'http://www.w3.org/2000/svg';

/** A round button that plays something; key: the one that does the same. */
function soundButton(document, label, key, pressed) {
  return button(document, { className: 'sound', ariaLabel: label, title: `${label} (${key})` }, pressed);
}

export function undoButton(document, pressed) {
  return button(document, { className: 'plain', title: t('home.undoKey') }, pressed, t('home.undo'));
}

/** How far the sitting is: so many words graded of so many. */
export function sittingPart(document, gradedCount, total, ...undo) {
  const make = (...rest) => create(document, ...rest);
  const place = t('review.place', { at: gradedCount + 1, total });
  const filled = make('span', {});
  filled.style.width = `${(100 * gradedCount) / Math.max(1, total)}%`;
  const way = make('span', {
    className: 'way', role: 'progressbar', 'aria-label': place,
    'aria-valuemin': 0, 'aria-valuemax': total, 'aria-valuenow': gradedCount,
  }, filled);
  return make('div', { className: 'sitting' }, way, make('span', { className: 'place', textContent: place }), ...undo);
}

/** The line with its word marked, and the film that it is of; a word without a line stands alone. */
export function frontPart(document, { lemma, sighting }, hear) {
  const make = (...rest) => create(document, ...rest);
  const line = make('p', { className: 'line', lang: 'en', dir: 'auto' });
  const front = make('div', { className: 'front' }, line);
  if (!sighting) {
    line.append(make('mark', { textContent: lemma }));
    return front;
  }
  const place = placeOfWord(sighting.line, sighting.form);
  showMarked(line, sighting.line, place ? [place] : []);
  const { title, detail } = titleTexts(sighting.fileName);
  const told = [title, detail, timeText(sighting.startMs)].filter(Boolean).join(' · ');
  front.append(make('div', { className: 'of-film' },
    ...(sighting.soundUrl ? [soundButton(document, t('review.hear'), 'S', hear)] : []),
    make('span', { dir: 'auto', textContent: told })));
  return front;
}

/** What the back tells: { meaning, ipa, definition, problem } of the look-up; lang: of the learner. */
export function backParts(document, { lemma, sighting }, { meaning, ipa, definition, problem }, lang, speak) {
  const make = (...rest) => create(document, ...rest);
  const word = make('p', { className: 'word' }, make('b', { lang: 'en', textContent: lemma }));
  if (ipa) word.append(make('span', { className: 'ipa', lang: 'en', textContent: `/${ipa}/` }));
  word.append(soundButton(document, t('review.speak'), 'W', speak));
  const unknown = problem ? { className: 'meaning is-problem', dir: 'auto', textContent: problem }
    : { className: 'meaning', textContent: t('review.noMeaning') };
  const known = { className: 'meaning', lang, dir: 'auto', textContent: meaning };
  const parts = [word, make('p', meaning ? known : unknown)];
  if (sighting?.translation) {
    parts.push(make('p', { className: 'translation', lang, dir: 'auto', textContent: sighting.translation }));
  }
  if (definition) parts.push(make('p', { className: 'definition', lang: 'en', textContent: definition }));
  return parts;
}

export function turnPart(document, turn) {
  const key = create(document, 'kbd', { textContent: keyName('space') });
  return create(document, 'div', { className: 'turn' },
    button(document, { className: 'main' }, turn, t('review.turn'), key));
}

/** The four grades with their keys, and when the word comes back by each. */
export function gradePart(document, status, grade) {
  const make = (...rest) => create(document, ...rest);
  const intervals = intervalsOf(status);
  const look = (name, i) => ({ className: `grade ${name}`, 'aria-keyshortcuts': i + 1 });
  const one = (name, i) => button(document, look(name, i), () => grade(name),
    make('kbd', { textContent: i + 1, ariaHidden: 'true' }),
    make('b', { textContent: t(`review.grade.${name}`) }),
    make('span', { textContent: outcomeText(intervals[name]) }));
  return make('div', { className: 'grades', role: 'group', 'aria-label': t('review.howWell') }, ...grades.map(one));
}

/** When nothing is due. hasWords: whether the learner has any; waitMs: until the next one is due, or null. */
export function endPart(document, { hasWords, gradedCount, waitMs }, undo) {
  const make = (...rest) => create(document, ...rest);
  const next = waitMs === null ? '' : t('review.next', { time: lengthText(Math.max(0, waitMs)) });
  const end = make('div', { className: 'end' }, sea(document),
    make('h3', { textContent: endText(hasWords, gradedCount) }),
    make('p', { textContent: hasWords ? next : t('review.howWords') }));
  if (gradedCount > 0) {
    end.append(make('p', { className: 'quiet', textContent: t('review.count', { count: gradedCount }) }));
  }
  if (undo) end.append(undo);
  return end;
}

/** The text of that, in a few words. */
export function endText(hasWords, gradedCount) {
  if (!hasWords) return t('review.noWords');
  return t(gradedCount > 0 ? 'review.done' : 'review.nothingDue');
}

/** When nobody knows what is due. */
export function problemPart(document, problem, tryAgain, ...undo) {
  return create(document, 'div', { className: 'end' },
    create(document, 'h3', { textContent: t('review.noAnswer') }),
    create(document, 'p', { className: 'quiet', dir: 'auto', textContent: problem }),
    create(document, 'div', { className: 'buttons' },
      button(document, { className: 'main' }, tryAgain, t('home.tryAgain')), ...undo));
}

// A calm sea with the sun above it.
function sea(document) {
  const svg = document.createElementNS(svgName, 'svg');
  for (const [name, value] of [['viewBox', '0 0 96 56'], ['aria-hidden', 'true'], ['class', 'sea']]) {
    svg.setAttribute(name, value);
  }
  for (const path of ['M30 34a18 18 0 0 1 36 0', 'M6 34h84', 'M20 42h56', 'M34 50h28']) {
    const drawn = document.createElementNS(svgName, 'path');
    drawn.setAttribute('d', path);
    svg.append(drawn);
  }
  return svg;
}
