// SPDX-License-Identifier: GPL-3.0-or-later

import { t } from '../../shared/texts.mjs';
import { trackName } from '../lines/subtitles.mjs';
import { noticePlace } from './noticeplace.mjs';

// Long enough to be read.
const readingMs = (text) => 1800 + 70 * text.length;

/** A short word over the picture, beside the cards that lie there; it goes by itself. */
export class Notice {
  #element;
  #timer = null;

  constructor(element) {
    this.#element = element;
    new MutationObserver(() => this.place())
      .observe(element.ownerDocument.body, { subtree: true, attributeFilter: ['hidden'] });
  }

  say(text, forMs = readingMs(text)) {
    clearTimeout(this.#timer);
    this.#element.textContent = text;
    this.place();
    this.#timer = setTimeout(() => {
      this.#element.textContent = '';
      this.#stand(null);
    }, forMs);
  }

  /** To be called when a card may have moved. */
  place() {
    if (this.#element.textContent === '') return;
    const { ownerDocument } = this.#element;
    const cards = [...ownerDocument.querySelectorAll('.glass:not([hidden])')].map((card) => card.getBoundingClientRect());
    this.#stand(null);
    // In a narrow stretch it reaches further down, and something else may be in its way there.
    for (let i = 0; i < 2; i += 1) {
      const { bottom } = this.#element.getBoundingClientRect();
      this.#stand(noticePlace(ownerDocument.defaultView.innerWidth, bottom, cards));
    }
  }

  #stand(place) {
    const { style } = this.#element;
    style.left = place ? `${place.middle}px` : '';
    style.maxWidth = place ? `${place.maxWidth}px` : '';
  }
}

/** What to tell the learner about the film's subtitles; empty when all is well. */
export function noticeOf({ fileName, tracks, trouble, isLoaded, isReadingFilm, readPercent }, shownLines) {
  if (trouble && shownLines === 0) return t('notice.noLines', { reason: trouble });
  if (shownLines === 2 || !isLoaded) return '';
  const bad = tracks.find((track) => track.error);
  if (bad) return t('notice.badTrack', { name: trackLabel(bad), reason: bad.error.message });
  if (isReadingFilm && shownLines === 0) return t('subtitles.reading', { percent: readPercent });
  if (shownLines > 0 || tracks.length > 0) return '';
  if (!fileName) return t('notice.noneKnown');
  const dot = fileName.lastIndexOf('.');
  const base = dot > 0 ? fileName.slice(0, dot) : fileName;
  return t('notice.noneFound', { example: `${base}.en.srt` });
}

const trackLabel = (track) => track.fileName || trackName(track);

const patienceMs = 20_000;

/** What to say of a film that should run and has been silent for so long. */
export function waitingText(silenceMs) {
  return t(silenceMs < patienceMs ? 'notice.waiting' : 'notice.stillWaiting');
}
