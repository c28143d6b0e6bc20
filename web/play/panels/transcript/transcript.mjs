// SPDX-License-Identifier: GPL-3.0-or-later

import { CueIndex } from '../../lines/cueindex.mjs';
import { LinesDriver } from '../../lines/linesdriver.mjs';
import { lineNames } from '../../lines/subtitles.mjs';
import { t } from '../../../shared/texts.mjs';
import { LineList } from './linelist.mjs';
import { LineSearch } from './linesearch.mjs';
import { listText, pairLines } from './pairs.mjs';

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
  #entries = []; // { text, under, startMs, isHard } by the places of the lines that the film steps by
  #places = []; // of those that are listed

  /** panels: a SidePanels. now(): a monotonic clock in ms. */
  constructor(document, panels, subtitles, film, now) {
    this.#element = (name) => document.querySelector(`#transcript-panel .${name}`);
    this.#panels = panels;
    this.#subtitles = subtitles;
    this.#film = film;
    this.#driver = new LinesDriver(film, now);
    this.#list = new LineList(this.#element('lines'), (row) => film.goToLine(this.#places[row]),
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
    this.load();
  }

  /** To be called after changes of the subtitles. Does nothing while the panel is closed. */
  load() {
    if (!this.#panels.isOpen(panelName)) return;
    const [name, other] = this.#subtitles.cues('learned') ? lineNames : [...lineNames].reverse();
    const cues = this.#subtitles.cues(name) ?? [];
    const beneath = pairLines(cues, this.#subtitles.cues(other) ?? []);
    this.#entries = cues.map((cue, i) => ({
      startMs: cue.startMs,
      text: listText(cue),
      under: beneath[i].map(listText).join('\n'),
      isHard: this.#isHard?.(cue) ?? false,
    }));
    this.#show([name, other].map((each) => this.#subtitles.line(each)?.languageTag ?? ''));
    const view = { show: () => this.#mark() };
    this.#driver.setTracks(cues.length > 0 ? [{ index: new CueIndex(cues), view }] : []);
  }

  /** To be called whenever the film's time may have changed otherwise than by running on. */
  update() {
    if (this.#panels.isOpen(panelName)) this.#driver.update();
  }

  #show(tags) {
    this.#places = [...this.#entries.keys()].filter((i) => !this.#onlyHard || this.#entries[i].isHard);
    const lines = this.#places.map((place) => this.#entries[place]);
    const isEmpty = lines.length === 0;
    this.#element('empty').hidden = !isEmpty;
    this.#element('lines').hidden = isEmpty;
    this.#search.setTexts(lines.map(({ text, under }) => `${text}\n${under}`));
    this.#list.show(lines, tags, this.#search.wanted);
    this.#element('back').hidden = true;
    const why = this.#entries.length > 0 ? 'transcript.noneHard' : 'transcript.empty';
    if (isEmpty) this.#element('empty').textContent = t(why);
    this.#element('hard').hidden = !this.#isHard;
    this.#element('hard').setAttribute('aria-pressed', String(this.#onlyHard));
    this.#tellHits();
  }

  // Where lines are left out, the last one that was said before now is the current one.
  #mark() {
    const said = this.#film.linePlace;
    this.#list.setCurrent(this.#onlyHard ? this.#places.filter((place) => place <= said).length - 1 : said);
  }

  #wire() {
    const field = this.#element('search');
    field.addEventListener('input', () => this.#searchFor(field.value));
    field.addEventListener('keydown', (event) => {
      if (event.key === 'Enter') this.#goToHit(event.shiftKey ? -1 : 1);
      if (event.key !== 'ArrowDown' || this.#places.length === 0) return;
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
    press('back', () => this.#list.follow());
    press('hard', () => {
      this.#onlyHard = !this.#onlyHard;
      this.load();
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
    const hit = this.#search.next(1, this.#list.place - 1);
    if (hit >= 0) this.#list.bring(hit);
    this.#tellHits(hit);
  }

  #goToHit(step) {
    if (!this.#panels.isOpen(panelName) || this.#search.wanted === '') {
      this.#find();
      return;
    }
    const hit = this.#search.next(step, this.#list.place);
    if (hit >= 0) this.#list.bring(hit);
    this.#tellHits(hit);
  }

  #tellHits(hit = -1) {
    const { hits, wanted } = this.#search;
    let text = '';
    if (wanted && hits.length === 0) text = t('transcript.noHit');
    else if (wanted && hit >= 0) text = t('transcript.hitOf', { place: hits.indexOf(hit) + 1, count: hits.length });
    else if (wanted) text = t('transcript.hits', { count: hits.length });
    this.#element('count').textContent = text;
    for (const name of ['previous', 'next']) this.#element(name).disabled = hits.length === 0;
  }
}
