// SPDX-License-Identifier: GPL-3.0-or-later

import { timeText } from '../../shared/timetext.mjs';
import { speedText } from './speedtext.mjs';
import { t } from '../../shared/texts.mjs';

const seekStepsPerSecond = 4;

/** The bar: hands presses on to the actions and shows the film's state. */
export class Controls {
  #document;
  #film;
  #seeking = false;

  /** actions: functions by the names that the buttons carry in data-action. */
  constructor(document, film, actions) {
    this.#document = document;
    this.#film = film;
    for (const button of document.querySelectorAll('[data-action]')) {
      button.addEventListener('click', () => actions[button.dataset.action]());
      // A press must not move the focus: the space bar would press the button again instead of pausing.
      button.addEventListener('pointerdown', (event) => event.preventDefault());
    }
    this.#wireSeek();
    const volume = this.#element('volume');
    volume.addEventListener('input', () => film.setVolume(Number(volume.value)));
    volume.addEventListener('pointerup', () => volume.blur());
  }

  /** The bar is held: it must not fade now. */
  get busy() {
    return this.#seeking;
  }

  show() {
    const film = this.#film;
    this.#showTime();
    this.#mark('play', film.playing && !film.ended ? 'playing' : 'paused');
    this.#element('play').setAttribute('aria-label', t(film.playing ? 'bar.pause' : 'bar.play'));
    this.#mark('mute', film.muted || film.volumePercent === 0 ? 'muted' : 'loud');
    this.#element('mute').setAttribute('aria-pressed', String(film.muted));
    const volume = this.#element('volume');
    volume.value = film.muted ? 0 : film.volumePercent;
    volume.setAttribute('aria-valuetext', film.muted ? t('bar.muted') : `${film.volumePercent} %`);
    this.#text('speed', speedText(film.speed));
    for (const button of this.#document.querySelectorAll('.line-step')) button.disabled = !film.canStepLines;
    this.#fill(volume);
  }

  fullScreen(on) {
    this.#text('screen-hint', t(on ? 'bar.fromFullScreen' : 'bar.toFullScreen'));
  }

  #showTime() {
    const { positionMs, durationMs } = this.#film;
    const seek = this.#element('seek');
    seek.disabled = durationMs === null;
    if (durationMs !== null) {
      seek.max = Math.floor((durationMs / 1000) * seekStepsPerSecond);
      this.#text('total', timeText(durationMs));
    }
    if (this.#seeking) return;
    // A film can run on a little longer than it says it lasts.
    const shownMs = Math.min(positionMs ?? 0, durationMs ?? Infinity);
    seek.value = Math.round((shownMs / 1000) * seekStepsPerSecond);
    this.#showSeek(shownMs);
  }

  #showSeek(positionMs) {
    const seek = this.#element('seek');
    this.#text('elapsed', timeText(positionMs));
    seek.setAttribute('aria-valuetext', timeText(positionMs));
    this.#fill(seek);
  }

  #wireSeek() {
    const seek = this.#element('seek');
    const chosen = () => Number(seek.value) / seekStepsPerSecond;
    seek.addEventListener('input', () => {
      this.#seeking = true;
      this.#showSeek(chosen() * 1000);
    });
    seek.addEventListener('change', () => {
      this.#seeking = false;
      this.#film.seekToSecond(chosen());
    });
    seek.addEventListener('pointerup', () => seek.blur());
  }

  #fill(range) {
    const share = Number(range.max) > 0 ? Number(range.value) / Number(range.max) : 0;
    range.style.setProperty('--filled', `${(share * 100).toFixed(2)}%`);
  }

  #mark(id, state) {
    const element = this.#element(id);
    if (element.dataset.state !== state) element.dataset.state = state;
  }

  #text(id, text) {
    const element = this.#element(id);
    if (element.textContent !== text) element.textContent = text;
  }

  #element(id) {
    return this.#document.getElementById(id);
  }
}
