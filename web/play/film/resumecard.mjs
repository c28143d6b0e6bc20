// SPDX-License-Identifier: GPL-3.0-or-later

import { t } from '../../shared/texts.mjs';
import { timeText } from '../../shared/timetext.mjs';
import { giveBackPresses, keepPresses } from '../panels/presses.mjs';

const shownMs = 12_000;
// What holds the card holds it no longer than this: a pointer may just lie there.
const longestShownMs = 40_000;
const lookAgainMs = 2000;

/** Offers to go on where the film was left. The film plays on meanwhile, and the card goes by itself. */
export class ResumeCard {
  #document;
  #card;
  #said;
  #positionMs = 0;
  #timer = null; // to look whether it is time to go
  #lastTimer = null; // to go
  #chosen;

  /** chosen(positionMs): to go there, 0 for the start; null when the card goes and nothing was chosen. */
  constructor(document, chosen) {
    this.#document = document;
    this.#card = document.getElementById('resume');
    this.#said = document.getElementById('said');
    this.#chosen = chosen;
    const [goOn, fromStart] = this.#card.querySelectorAll('button');
    goOn.addEventListener('click', () => this.#end(this.#positionMs));
    fromStart.addEventListener('click', () => this.#end(0));
    for (const button of [goOn, fromStart]) button.addEventListener('pointerdown', (event) => event.preventDefault());
    keepPresses(this.#card);
    for (const name of ['pointerleave', 'focusout']) this.#card.addEventListener(name, () => this.#waitOn(shownMs));
    document.addEventListener('keydown', (event) => this.#keyPressed(event));
  }

  show(positionMs, durationMs) {
    this.#positionMs = positionMs;
    this.#card.querySelector('.filled').style.width = `${durationMs > 0 ? (100 * positionMs) / durationMs : 0}%`;
    this.#card.hidden = false;
    this.translate();
    this.#waitOn(shownMs);
    clearTimeout(this.#lastTimer);
    this.#lastTimer = setTimeout(() => this.hide(), longestShownMs);
  }

  /** To be called after the language of the interface has changed. */
  translate() {
    if (this.#card.hidden) return;
    const time = timeText(this.#positionMs);
    this.#card.querySelector('.stopped').textContent = t('resume.stopped', { time });
    this.#card.querySelector('.go-on').textContent = t('resume.goOn', { time });
    this.#said.textContent = t('resume.said', { time });
  }

  hide() {
    this.#end(null);
  }

  #waitOn(forMs) {
    clearTimeout(this.#timer);
    if (!this.#card.hidden) this.#timer = setTimeout(() => this.#timeIsUp(), forMs);
  }

  #timeIsUp() {
    const isHeld = this.#card.matches(':hover') || this.#card.contains(this.#document.activeElement);
    if (isHeld) this.#waitOn(lookAgainMs);
    else this.hide();
  }

  #end(positionMs) {
    if (this.#card.hidden) return;
    clearTimeout(this.#timer);
    clearTimeout(this.#lastTimer);
    if (this.#card.contains(this.#document.activeElement)) this.#document.activeElement.blur();
    this.#card.hidden = true;
    this.#said.textContent = '';
    giveBackPresses(this.#document);
    this.#chosen(positionMs);
  }

  // Enter belongs to what has the keyboard; where nothing has it, to the card.
  #keyPressed(event) {
    const { activeElement, body } = this.#document;
    if (this.#card.hidden || event.key !== 'Enter' || event.repeat || (activeElement && activeElement !== body)) return;
    event.preventDefault();
    this.#end(this.#positionMs);
  }
}
