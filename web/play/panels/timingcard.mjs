// SPDX-License-Identifier: GPL-3.0-or-later

import { button, create, setHidden } from '../../shared/elements.mjs';
import { number } from '../../shared/texts.mjs';
import { FilmFit } from './filmfit.mjs';
import { LanguageChoice } from './languagechoice.mjs';
import { LetterChoice } from './letterchoice.mjs';
import { LinePicker } from './linepicker.mjs';
import { trackName } from '../lines/subtitles.mjs';
import {
  frameRates, isSameRate, isUnmoved, offsetText, shifted, startingAt, timingText, unmoved, withRate,
} from '../lines/timing.mjs';

export const stepMs = 100;

/** How the subtitle of one line is moved: by hand, by picking the line that is said, by frame rate, by one click. */
export class TimingCard {
  element;
  #document;
  #name;
  #subtitles;
  #film;
  #title;
  #value;
  #pick;
  #reset;
  #rates;
  #picker;
  #fit;
  #language;
  #letters;

  /** failed(text): what the learner asked for could not be done. */
  constructor(document, name, subtitles, film, failed) {
    this.#document = document;
    this.#name = name;
    this.#subtitles = subtitles;
    this.#film = film;
    this.#title = create(document, 'h3', { className: name });
    this.#value = create(document, 'output', { className: 'offset' });
    this.#reset = button(document,
      { className: 'plain', 'data-title': 'timing.resetHint', 'data-text': 'timing.reset' },
      () => this.#moveTo(unmoved));
    this.#rates = this.#rateChoice();
    this.#pick = button(document, { className: 'plain pick', 'data-title': 'timing.pickHint', 'data-text': 'timing.pick' },
      () => this.#picker.open(this.#line));
    this.#picker = new LinePicker(document, film, this.#pick,
      (cue, positionMs) => this.#moveTo(startingAt(this.#line.timing, cue, positionMs)));
    this.#fit = new FilmFit(document, subtitles, name);
    this.#language = new LanguageChoice(document, subtitles, name, failed);
    this.#letters = new LetterChoice(document, subtitles, name, failed);
    const step = (byMs, text, hint) => button(document, { 'data-title': hint, 'data-label': hint },
      () => this.#moveTo(shifted(this.#line.timing, byMs)), text);
    this.element = create(document, 'section', { className: 'timing-card', 'data-label': `subtitles.line.${name}` },
      create(document, 'div', { className: 'row' }, this.#title, this.#fit.button),
      this.#fit.said,
      create(document, 'div', { className: 'row', role: 'group', 'data-label': 'timing.name' },
        step(-stepMs, '−', 'timing.stepEarlier'), this.#value, step(stepMs, '+', 'timing.stepLater'),
        this.#pick, this.#reset),
      this.#picker.element,
      this.#rarelyUsed());
  }

  show() {
    const line = this.#line;
    this.#picker.showFor(line?.subtitleId ?? 0);
    this.element.hidden = !line;
    if (!line) return;
    this.#title.textContent = trackName(line);
    this.#value.textContent = offsetText(line.timing.offsetMs);
    this.#value.title = timingText(line.timing);
    setHidden(this.#reset, isUnmoved(line.timing), this.#pick);
    this.#showRate(line.timing);
    this.#fit.show();
    this.#language.show();
    this.#letters.show();
  }

  /** To be called after changes of the film. */
  update() {
    this.#picker.update();
  }

  closed() {
    this.#picker.close();
    this.#language.closed();
  }

  /** Saves at once what is not saved yet. */
  saveNow() {
    this.#language.saveNow();
  }

  get #line() {
    return this.#subtitles.line(this.#name);
  }

  #moveTo(timing) {
    this.#subtitles.move(this.#name, timing);
  }

  #rarelyUsed() {
    const summary = create(this.#document, 'summary', { 'data-text': 'subtitles.rare' });
    // As with buttons, a click leaves the keyboard to the film.
    summary.addEventListener('pointerdown', (event) => event.preventDefault());
    const details = create(this.#document, 'details', {}, summary,
      create(this.#document, 'div', { className: 'row' }, this.#letters.button, this.#language.element),
      this.#letters.list,
      create(this.#document, 'div', { className: 'row' }, this.#rates));
    details.addEventListener('toggle', () => { if (details.open) details.scrollIntoView({ block: 'nearest' }); });
    return details;
  }

  #rateChoice() {
    const choices = [create(this.#document, 'option', { value: '', 'data-text': 'timing.rateOfFilm' })];
    for (const i of frameRates.keys()) {
      for (const k of frameRates.keys()) {
        if (i !== k) choices.push(create(this.#document, 'option', { value: `${i} ${k}` })); // named when it is shown
      }
    }
    const select = create(this.#document, 'select', { 'data-title': 'timing.rateHint' }, ...choices);
    select.addEventListener('change', () => {
      const places = select.value === '' ? [0, 0] : select.value.split(' ');
      const [made, shown] = places.map((i) => frameRates[i]);
      this.#moveTo(withRate(this.#line.timing, made, shown, this.#film.positionMs ?? 0));
    });
    return create(this.#document, 'label', {}, create(this.#document, 'span', { 'data-text': 'timing.rate' }), select);
  }

  #showRate(timing) {
    const select = this.#rates.querySelector('select');
    const ratesOf = ({ value }) => value.split(' ').map((i) => frameRates[i]);
    const [, ...choices] = select.options; // without that of the film itself
    for (const choice of choices) {
      const text = ratesOf(choice).map(({ numerator, denominator }) => number(numerator / denominator)).join(' → ');
      if (choice.textContent !== text) choice.textContent = text;
    }
    const found = choices.find((choice) => isSameRate(timing, ...ratesOf(choice)));
    select.value = timing.rateNumerator === timing.rateDenominator ? '' : found?.value ?? '';
  }
}
