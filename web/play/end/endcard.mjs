// SPDX-License-Identifier: GPL-3.0-or-later

import { create } from '../../shared/elements.mjs';
import { filmTitle } from '../../shared/filmtitle.mjs';
import { number, t } from '../../shared/texts.mjs';
import { giveBackPresses, keepPresses } from '../panels/presses.mjs';
import { summaryOf } from './filmsummary.mjs';

// The card waits this long for its figures, so that it need not grow before the learner's eyes.
const longestWaitMs = 700;
const savedAsked = 8;

/** The card at the end of a film: what was met, what is to be reviewed, and where to go from here. */
export class EndCard {
  #document;
  #card;
  #api;
  #videoId;
  #subtitles;
  #isOver = false;
  #told = null; // the summary that the card shows
  #ends = 0;

  constructor(document, api, videoId, subtitles) {
    this.#document = document;
    this.#card = document.getElementById('end');
    this.#api = api;
    this.#videoId = videoId;
    this.#subtitles = subtitles;
    keepPresses(this.#card);
    // In a low window what was met scrolls, also by the keyboard.
    this.#part('met').addEventListener('keydown', (event) => {
      if (/^(Arrow|Page)/.test(event.key)) event.stopPropagation();
    });
  }

  /** isOver: whether the film is. To be called after changes of the film; does something when that changes. */
  update(isOver) {
    if (isOver === this.#isOver) return;
    this.#isOver = isOver;
    if (isOver) this.#show();
    else this.#hide();
  }

  /** To be called after the language of the interface has changed. */
  translate() {
    if (this.#isOver && this.#told) this.#fill(this.#told);
  }

  async #show() {
    this.#ends += 1;
    const end = this.#ends;
    this.#fill(this.#summary(null, null, null));
    const figures = this.#figures();
    figures.then((summary) => { if (end === this.#ends) this.#fill(summary); });
    await Promise.race([figures, new Promise((settle) => { setTimeout(settle, longestWaitMs); })]);
    if (end !== this.#ends || !this.#isOver) return;
    this.#card.hidden = false;
    if (this.#isFocusFree()) this.#card.querySelector('button').focus();
  }

  // Nobody is interrupted who writes or chooses in a panel.
  #isFocusFree() {
    const { activeElement, body } = this.#document;
    return !activeElement || activeElement === body || activeElement.closest('#bar') !== null;
  }

  #hide() {
    this.#ends += 1;
    if (this.#card.contains(this.#document.activeElement)) this.#document.activeElement.blur();
    this.#card.hidden = true;
    this.#part('said').textContent = '';
    giveBackPresses(this.#document);
  }

  async #figures() {
    const told = (asked) => asked.catch((error) => { console.warn(error.message); return null; });
    return this.#summary(...await Promise.all([
      told(this.#api.filmWords(this.#videoId)),
      told(this.#api.words({ videoId: this.#videoId, order: 'saved', count: savedAsked })),
      told(this.#api.review(1)),
    ]));
  }

  #summary(words, saved, review) {
    const line = this.#subtitles.line('learned') ?? this.#subtitles.line('native');
    return summaryOf(line?.cues.length ?? 0, words, saved, review);
  }

  #fill(summary) {
    this.#told = summary;
    const { lineCount, runningWords, knownPercent, newCount, savedCount, dueCount } = summary;
    this.#part('film').textContent = filmTitle(this.#subtitles.fileName).title;
    const hasWords = knownPercent !== null;
    this.#part('ring').hidden = !hasWords;
    this.#part('ring').style.setProperty('--known', `${knownPercent ?? 0}%`);
    this.#part('percent').textContent = hasWords ? t('bar.percent', { percent: knownPercent }) : '';
    const figures = [
      ['end.lines', lineCount], ['end.running', runningWords], ['end.new', newCount], ['end.saved', savedCount],
    ].filter(([key, count]) => count > 0 || (hasWords && key === 'end.new'));
    this.#part('figures').replaceChildren(...figures.map(([key, count]) => this.#figure(key, count)));
    this.#part('no-words').hidden = hasWords;
    this.#part('no-words').textContent = t(lineCount > 0 ? 'end.noWords' : 'end.noLines');
    this.#list('new', summary.newWords, newCount);
    this.#list('saved', summary.savedWords, savedCount);
    this.#part('due').textContent = dueCount > 0 ? t('end.due', { count: dueCount }) : '';
    const known = hasWords ? t('end.saidKnown', { percent: knownPercent }) : '';
    const told = [t('end.title'), known, this.#part('due').textContent].filter(Boolean);
    this.#part('said').textContent = told.join(' ');
  }

  #figure(key, count) {
    return create(this.#document, 'div', {},
      create(this.#document, 'dd', { textContent: number(count) }),
      create(this.#document, 'dt', { textContent: t(key, { count }) }));
  }

  #list(name, words, count) {
    const list = this.#part(`${name}-words`);
    list.hidden = words.length === 0;
    const chips = words.map((word) => create(this.#document, 'li', { textContent: word, lang: 'en' }));
    const others = count - words.length;
    if (others > 0) {
      const textContent = t('end.others', { count: others });
      chips.push(create(this.#document, 'li', { className: 'others', textContent }));
    }
    list.querySelector('ul').replaceChildren(...chips);
  }

  #part(name) {
    return name === 'said' ? this.#document.getElementById('said') : this.#card.querySelector(`.${name}`);
  }
}
