// SPDX-License-Identifier: GPL-3.0-or-later

import { button, create } from '../../shared/elements.mjs';
import { t } from '../../shared/texts.mjs';
import { timeText } from '../../shared/timetext.mjs';
import { filmProgress } from './filmprogress.mjs';
import { filmTitle } from '../../shared/filmtitle.mjs';

/** A film's title, and its year, season and episode as a quieter text, perhaps empty. */
export function titleTexts(fileName) {
  const { title: found, year, season, episode, name } = filmTitle(fileName);
  const title = found || t('films.noName');
  const parts = [season === null ? '' : t('films.episode', { season, episode }), name, year ?? ''];
  return { title, detail: parts.filter((part) => part !== '').join(' · ') };
}

function leftText(film) {
  const { minutesLeft } = filmProgress(film);
  if (film.isFinished) return t('films.watched');
  return minutesLeft === null ? timeText(film.positionMs) : t('films.minutesLeft', { count: minutesLeft });
}

/** Why it cannot be opened from here, as a short word on the card; empty: it can. */
const goneText = (film) => (film.isThere ? '' : t(film.isAddress ? 'films.ofAddress' : 'films.moved'));

/** A tint of its own for a film without a picture, the same each time. */
const hueOf = (text) => [...text].reduce((sum, letter) => (sum * 31 + letter.codePointAt(0)) % 360, 0);

/**
 * The card of a film on the shelf. still: address of its picture; isBusy: it is being opened; opened() and removed()
 * when they are asked for.
 */
export function filmCard(document, film, { still, isBusy, opened, removed }) {
  const make = (...rest) => create(document, ...rest);
  const { title, detail } = titleTexts(film.fileName);
  const { percent } = filmProgress(film);
  const gone = goneText(film);
  const known = film.knownPercent === null ? '' : t('films.known', { percent: film.knownPercent });

  const picture = make('span', { className: 'picture' });
  picture.style.setProperty('--hue', hueOf(title));
  const image = make('img', { src: still, alt: '', draggable: false });
  image.addEventListener('error', () => image.remove());
  const filled = make('span', {});
  filled.style.width = `${percent}%`;
  picture.append(
    make('span', { className: 'letter', textContent: [...title][0], ariaHidden: 'true' }),
    image,
    ...(gone ? [make('span', { className: 'gone', textContent: gone })] : []),
    make('span', { className: 'way' }, filled));

  const saved = film.savedWords === 0 ? '' : t('films.saved', { count: film.savedWords });
  const facts = [leftText(film), known, saved].filter(Boolean);
  const card = button(document, { className: 'film-open', title: film.fileName, ariaBusy: String(isBusy) }, opened,
    picture,
    make('span', { className: 'film-title', dir: 'auto', textContent: title }),
    ...(detail ? [make('span', { className: 'film-detail', dir: 'auto', textContent: detail })] : []),
    make('span', { className: 'film-facts' }, ...facts.map((fact) => make('span', { textContent: fact }))));
  const remove = button(document, {
    className: 'film-remove', ariaLabel: t('films.remove', { title }), title: t('films.removeShort'),
  }, removed);
  return make('li', { className: gone ? 'film is-gone' : 'film' }, card, remove);
}
