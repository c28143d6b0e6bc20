// SPDX-License-Identifier: GPL-3.0-or-later

import { CueIndex } from '../../lines/cueindex.mjs';
import { LinesDriver } from '../../lines/linesdriver.mjs';
import { lineNames } from '../../lines/subtitles.mjs';
import { t } from '../../../shared/texts.mjs';
import { LineList } from './linelist.mjs';
import { LineSearch } from './linesearch.mjs';
import { isSameList, listedLines } from './listedlines.mjs';

const panelName = 'transcript';

/** The panel with all lines of the film: what is said now, what is looked for, and the way there. */
export class Transcript {
  actions = {
    transcript: () => this.#panels.toggle(panelName),
    find: () => this.#find(),
    nextHit: () => this.#goToHit(1),
    previousHit: () => this.#goToHit(-1),
  };
  #element;
  #panels;
  #subtitles;
  #film;
  #driver;
  #list;
  #search = new LineSearch();
  #isHard = null;
  #onlyHard = false;
  #lines = []; // listedLines(), by the places of the lines that the film steps by
  #tags = '';
  #listed = []; // those that are in the list
  #hit = -1; // the row that was gone to last

  /** panels: a SidePanels. now(): a monotonic clock in ms. */
  constructor(document, panels, subtitles, film, now) {
    this.#element = (name) => document.querySelector(`#transcript-panel .${name}`);
    this.#panels = panels;
    this.#subtitles = subtitles;
    this.#film = film;
    this.#driver = new LinesDriver(film, now);
    this.#list = new LineList(this.#element('lines'), (row) => film.goToLine(this.#listed[row].place),
      (on) => { this.#element('back').hidden = on; });
    this.#wire();
    panels.add(panelName, {
      element: document.getElementById('transcript-panel'),
      button: document.getElementById('transcript'),
      opened: () => { this.load(); this.#list.follow(); },
      closed: () => this.#driver.setTracks([]),
      stays: true,
    });
  }

  /** isHard(cue): whether a line has a word that the learner does not know yet; null: nobody can say. */
  setHard(isHard) {
    this.#isHard = isHard;
    if (!isHard) this.#onlyHard = false;
    if (this.#panels.isOpen(panelName)) this.#listAnew();
  }

  /** To be called after changes of the subtitles. Does nothing while the panel is closed. */
  load() {
    if (!this.#panels.isOpen(panelName)) return;
    const [name, other] = this.#subtitles.cues('learned') ? lineNames : [...lineNames].reverse();
    const cues = this.#subtitles.cues(name) ?? [];
    const lines = listedLines(cues, this.#subtitles.cues(other) ?? []);
    const tags = [name, other].map((each) => this.#subtitles.line(each)?.languageTag ?? '');
    const isOther = !isSameList(this.#lines, lines) || tags.join() !== this.#tags;
    this.#lines = lines;
    this.#tags = tags.join();
    if (isOther) this.#list.begin(tags);
    this.#listAnew();
    const view = { show: () => this.#mark() };
    this.#driver.setTracks(cues.length > 0 ? [{ index: new CueIndex(cues), view }] : []);
  }

  /** To be called whenever the film's time may have changed otherwise than by running on. */
  update() {
    if (this.#panels.isOpen(panelName)) this.#driver.update();
  }

  #listAnew() {
    const before = this.#listed;
    this.#listed = this.#onlyHard ? this.#lines.filter(({ cue }) => this.#isHard(cue)) : this.#lines;
    const isEmpty = this.#listed.length === 0;
    this.#element('empty').hidden = !isEmpty;
    this.#element('lines').hidden = isEmpty;
    const why = this.#lines.length > 0 ? 'transcript.noneHard' : 'transcript.empty';
    if (isEmpty) this.#element('empty').textContent = t(why);
    this.#element('hard').hidden = !this.#isHard;
    this.#element('hard').setAttribute('aria-pressed', String(this.#onlyHard));
    if (this.#list.show(this.#listed)) {
      this.#search.setTexts(this.#listed.map(({ text, under }) => `${text}\n${under}`));
      if (!isSameList(before, this.#listed)) this.#hit = -1;
    }
    this.#tellHits();
    this.#mark();
  }

  // Where lines are left out, the last one that was said before now is the current one.
  #mark() {
    const said = this.#film.linePlace;
    this.#list.setCurrent(this.#onlyHard ? this.#listed.filter(({ place }) => place <= said).length - 1 : said);
  }

  #wire() {
    const field = this.#element('search');
    field.addEventListener('input', () => this.#searchFor(field.value));
    field.addEventListener('keydown', (event) => {
      if (event.key === 'Enter') this.#goToHit(event.shiftKey ? -1 : 1);
      if (event.key !== 'ArrowDown' || this.#listed.length === 0) return;
      event.preventDefault();
      this.#element('lines').focus();
    });
    const press = (name, action) => {
      this.#element(name).addEventListener('click', action);
      this.#element(name).addEventListener('pointerdown', (event) => event.preventDefault());
    };
    press('previous', () => this.#goToHit(-1));
    press('next', () => this.#goToHit(1));
    press('close', () => this.#panels.close());
    press('back', () => {
      const hadFocus = this.#element('back').matches(':focus');
      this.#list.follow(); // which hides it
      if (hadFocus) this.#element('lines').focus();
    });
    press('hard', () => {
      this.#onlyHard = !this.#onlyHard;
      this.#listAnew();
      this.#list.follow();
    });
  }

  #find() {
    this.#panels.open(panelName);
    this.#element('search').focus();
    this.#element('search').select();
  }

  #searchFor(text) {
    this.#search.setWanted(text);
    this.#list.setWanted(this.#search.wanted);
    this.#bring(this.#search.next(1, this.#list.place - 1));
  }

  #goToHit(step) {
    if (!this.#panels.isOpen(panelName) || this.#search.wanted === '') {
      this.#find();
      return;
    }
    this.#bring(this.#search.next(step, this.#list.place));
  }

  #bring(hit) {
    this.#hit = hit;
    if (hit >= 0) this.#list.bring(hit);
    this.#tellHits();
  }

  #tellHits() {
    const { hits, wanted } = this.#search;
    const at = hits.indexOf(this.#hit);
    let text = '';
    if (wanted && hits.length === 0) text = t('transcript.noHit');
    else if (wanted && at >= 0) text = t('transcript.hitOf', { place: at + 1, count: hits.length });
    else if (wanted) text = t('transcript.hits', { count: hits.length });
    const count = this.#element('count');
    if (count.textContent !== text) count.textContent = text; // or else it is said again
    for (const name of ['previous', 'next']) this.#element(name).disabled = hits.length === 0;
  }
}
