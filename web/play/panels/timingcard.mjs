// SPDX-License-Identifier: GPL-3.0-or-later

import { button, create } from '../../shared/elements.mjs';
import { FilmFit } from './filmfit.mjs';
import { LetterChoice } from './letterchoice.mjs';
import { LinePicker } from './linepicker.mjs';
import { trackName } from '../lines/subtitles.mjs';
import { frameRates, isSameRate, isUnmoved, offsetText, shifted, startingAt, timingText, unmoved, withRate } from '../lines/timing.mjs';

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
  #reset;
  #rates;
  #picker;
  #fit;
  #letters;

  constructor(document, title, name, subtitles, film) {
    this.#document = document;
    this.#name = name;
    this.#subtitles = subtitles;
    this.#film = film;
    this.#title = create(document, 'h3', { className: name });
    this.#value = create(document, 'output', { className: 'offset' });
    this.#reset = button(document, { className: 'plain', title: 'As the subtitle itself has it' },
      () => this.#moveTo(unmoved), 'Reset');
    this.#rates = this.#rateChoice();
    this.#picker = new LinePicker(document, film, (cue, positionMs) => this.#moveTo(startingAt(this.#line.timing, cue, positionMs)));
    this.#fit = new FilmFit(document, subtitles, name);
    this.#letters = new LetterChoice(document, subtitles, name);
    const step = (byMs, text, hint) => button(document, { title: hint, ariaLabel: hint }, () => this.#moveTo(shifted(this.#line.timing, byMs)), text);
    this.element = create(document, 'section', { className: 'timing-card', ariaLabel: title },
      create(document, 'div', { className: 'row' }, this.#title, this.#fit.button),
      this.#fit.said,
      create(document, 'div', { className: 'row', role: 'group', ariaLabel: 'Timing' },
        step(-stepMs, '−', '0.1 s earlier'), this.#value, step(stepMs, '+', '0.1 s later'),
        button(document, { className: 'plain pick', title: 'Pick the line that is said at this moment' },
          () => this.#picker.open(this.#line), 'This line is now…'),
        this.#reset),
      this.#picker.element,
      create(document, 'div', { className: 'row' }, this.#rates, this.#letters.button),
      this.#letters.list);
  }

  show() {
    const line = this.#line;
    this.element.hidden = !line;
    if (!line) return;
    this.#picker.showFor(line.subtitleId);
    this.#title.textContent = trackName(line);
    this.#value.textContent = offsetText(line.timing.offsetMs);
    this.#value.title = timingText(line.timing);
    this.#reset.hidden = isUnmoved(line.timing);
    this.#showRate(line.timing);
    this.#fit.show();
    this.#letters.show();
  }

  closed() {
    this.#picker.close();
  }

  get #line() {
    return this.#subtitles.line(this.#name);
  }

  #moveTo(timing) {
    this.#subtitles.move(this.#name, timing);
  }

  #rateChoice() {
    const choices = [create(this.#document, 'option', { value: '', textContent: 'as the film' })];
    frameRates.forEach((made, i) => frameRates.forEach((shown, k) => {
      if (i !== k) choices.push(create(this.#document, 'option', { value: `${i} ${k}`, textContent: `${made.text} → ${shown.text}` }));
    }));
    const select = create(this.#document, 'select', { title: 'For a subtitle that runs away from the film more and more' }, ...choices);
    select.addEventListener('change', () => {
      const [made, shown] = select.value === '' ? [frameRates[0], frameRates[0]] : select.value.split(' ').map((i) => frameRates[i]);
      this.#moveTo(withRate(this.#line.timing, made, shown, this.#film.positionMs ?? 0));
    });
    return create(this.#document, 'label', {}, 'Frames a second ', select);
  }

  #showRate(timing) {
    const select = this.#rates.querySelector('select');
    const isRate = ({ value }) => {
      const [made, shown] = value.split(' ').map((i) => frameRates[i]);
      return value !== '' && isSameRate(timing, made, shown);
    };
    const found = [...select.options].find(isRate);
    select.value = timing.rateNumerator === timing.rateDenominator ? '' : found?.value ?? '';
  }
}
