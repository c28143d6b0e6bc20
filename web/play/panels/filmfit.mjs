// SPDX-License-Identifier: GPL-3.0-or-later

import { button, create, setHidden } from '../../shared/elements.mjs';
import { t } from '../../shared/texts.mjs';
import { timingText } from '../lines/timing.mjs';

const askAgainMs = 300;
// Of the evidence that is needed to be sure, 50 is just enough.
const verySurePercent = 70;
const halfSurePercent = 35;
const leastPercent = 20;

/** What to say of a fitting that has ended. */
export function fitText({ timing, isSure, surePercent, isAgainstTrack }) {
  if (!timing || surePercent < leastPercent) return t('fit.none');
  const how = isAgainstTrack ? 'ByTrack' : 'BySound';
  const found = { timing: timingText(timing) };
  if (!isSure) return t(`fit.${surePercent < halfSurePercent ? 'guess' : 'perhaps'}${how}`, found);
  return t(`fit.${surePercent < verySurePercent ? 'sure' : 'verySure'}${how}`, found);
}

/** One click moves a line's subtitle to where the film has it. What is not sure is offered, not done. */
export class FilmFit {
  button;
  /** What came of it, and what can be done then; nothing at first. */
  said;
  #subtitles;
  #name;
  #text;
  #progress;
  #use;
  #undo;
  #fitted = null; // { before, found }
  #saidFor = 0; // the subtitle that the words are about
  #running = 0; // the subtitle that is being fitted; 0: none

  constructor(document, subtitles, name) {
    this.#subtitles = subtitles;
    this.#name = name;
    this.button = button(document, { className: 'strong', 'data-title': 'fit.hint' }, () => this.#pressed());
    this.#text = create(document, 'span', { role: 'status' });
    this.#use = button(document, { className: 'plain', 'data-text': 'fit.use', hidden: true },
      () => this.#apply(this.#fitted.found));
    this.#undo = button(document, { className: 'plain', 'data-text': 'fit.undo', hidden: true },
      () => this.#takeBack());
    this.#progress = create(document, 'span'); // no live region: nobody wants to hear each figure
    this.said = create(document, 'div', { className: 'row fit-said silent' }, this.#text, this.#progress,
      this.#use, this.#undo);
  }

  show() {
    const id = this.#subtitles.line(this.#name)?.subtitleId;
    const isRunning = this.#running === id;
    this.button.textContent = t(isRunning ? 'fit.stop' : 'fit.begin');
    this.#progress.hidden = !isRunning;
    if (this.#saidFor !== id) this.#say('');
  }

  async #pressed() {
    const { subtitleId } = this.#subtitles.line(this.#name);
    const api = this.#subtitles.api;
    this.#saidFor = subtitleId;
    if (this.#running === subtitleId) {
      this.#running = 0;
      this.#progress.textContent = '';
      this.#say('');
      this.show();
      await api.endSync(subtitleId).catch(() => {});
      return;
    }
    this.#running = subtitleId;
    this.#fitted = null;
    this.#say(t('fit.listening'));
    this.show();
    try {
      await this.#follow(subtitleId, await api.beginSync(subtitleId));
    } catch (error) {
      if (this.#running !== subtitleId) return;
      this.#running = 0;
      this.#say(error.message);
    }
    this.show();
  }

  async #follow(subtitleId, begun) {
    let state = begun;
    while (state.stage === 'running') {
      this.#progress.textContent = state.percent > 0 ? t('bar.percent', { percent: state.percent }) : '';
      await new Promise((settle) => { setTimeout(settle, askAgainMs); });
      if (this.#running !== subtitleId) return;
      state = await this.#subtitles.api.syncState(subtitleId);
    }
    this.#running = 0;
    this.#progress.textContent = '';
    const line = this.#subtitles.line(this.#name);
    if (state.stage === 'none') this.#say(t('fit.stopped'));
    else if (line?.subtitleId === subtitleId) this.#ended(line, state);
  }

  #ended(line, state) {
    this.#fitted = { before: line.timing, found: state.timing };
    const isSure = state.timing && state.isSure;
    const isOffered = state.timing && !state.isSure && state.surePercent >= leastPercent;
    this.#say(fitText(state), (isSure && this.#undo) || (isOffered && this.#use) || null);
    if (isSure) this.#subtitles.move(this.#name, state.timing);
  }

  #apply(timing) {
    this.#say(t('fit.chosen', { timing: timingText(timing) }), this.#undo);
    this.#subtitles.move(this.#name, timing);
  }

  #takeBack() {
    this.#say('');
    this.#subtitles.move(this.#name, this.#fitted.before);
  }

  // offered: what can be done then, of the two buttons; the keyboard does not stay on what goes.
  #say(text, offered = null) {
    if (this.#text.textContent !== text) this.#text.textContent = text;
    this.said.classList.toggle('silent', text === '');
    if (offered) offered.hidden = false;
    for (const each of [this.#use, this.#undo]) setHidden(each, each !== offered, offered ?? this.button);
  }
}
