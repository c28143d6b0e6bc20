// SPDX-License-Identifier: GPL-3.0-or-later

import { speedText } from './speedtext.mjs';
import { keyName } from '../../shared/keyname.mjs';
import { t } from '../../shared/texts.mjs';
import { MoreButtons } from './morebuttons.mjs';
import { Tips } from './tips.mjs';

/** The bar's buttons: hands presses on to the actions, and shows the film's state and the keys. */
export class Controls {
  #document;
  #film;
  #keymap;
  #tips;
  more;

  /** actions: functions by the names that the buttons carry in data-action. moreClosed(): "more" has closed. */
  constructor(document, film, actions, keymap, moreClosed) {
    this.#document = document;
    this.#film = film;
    this.#keymap = keymap;
    for (const button of document.querySelectorAll('[data-action]')) {
      button.addEventListener('click', () => actions[button.dataset.action]());
      // A press must not move the focus: the space bar would press the button again instead of pausing.
      button.addEventListener('pointerdown', (event) => event.preventDefault());
    }
    const volume = this.#element('volume');
    volume.addEventListener('input', () => film.setVolume(Number(volume.value)));
    volume.addEventListener('pointerup', () => volume.blur());
    this.more = new MoreButtons(document, moreClosed);
    this.#tips = new Tips(document, document.getElementById('bar'));
    this.named();
  }

  /** To be called when the learner's language or keys (another keymap) have changed. */
  named(keymap = this.#keymap) {
    this.#keymap = keymap;
    for (const button of this.#document.querySelectorAll('#bar [data-action]')) {
      const keys = keymap.keysOf(button.dataset.action);
      button.dataset.keys = keys.length > 0 ? keyName(keys[0]) : '';
    }
    const speed = this.#element('speed'); // its name is the speed itself
    speed.dataset.tip = t('bar.normalSpeed');
    speed.setAttribute('aria-description', t('bar.normalSpeed'));
    this.show();
    this.more.fit();
  }

  show() {
    const film = this.#film;
    const plays = film.playing && !film.stands;
    this.#mark('play', plays ? 'playing' : 'paused');
    this.#label('play', t(plays ? 'bar.pause' : 'bar.play'));
    this.#mark('mute', film.muted || film.volumePercent === 0 ? 'muted' : 'loud');
    this.#element('mute').setAttribute('aria-pressed', String(film.muted));
    const volume = this.#element('volume');
    volume.value = film.muted ? 0 : film.volumePercent;
    const loudness = film.muted ? t('bar.muted') : t('bar.percent', { percent: film.volumePercent });
    volume.setAttribute('aria-valuetext', loudness);
    volume.style.setProperty('--filled', `${(Number(volume.value) / Number(volume.max)) * 100}%`);
    const speed = this.#element('speed');
    if (speed.textContent !== speedText(film.speed)) speed.textContent = speedText(film.speed);
    for (const button of this.#document.querySelectorAll('.line-step')) button.disabled = !film.canStepLines;
  }

  fullScreen(on) {
    this.#element('screen-hint').textContent = t(on ? 'bar.fromFullScreen' : 'bar.toFullScreen');
  }

  #label(id, text) {
    const element = this.#element(id);
    if (element.getAttribute('aria-label') !== text) element.setAttribute('aria-label', text);
  }

  #mark(id, state) {
    const element = this.#element(id);
    if (element.dataset.state !== state) element.dataset.state = state;
  }

  #element(id) {
    return this.#document.getElementById(id);
  }
}
