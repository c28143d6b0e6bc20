// SPDX-License-Identifier: GPL-3.0-or-later

import { speedText } from '../bar/speedtext.mjs';
import { button } from '../../shared/elements.mjs';
import { t } from '../../shared/texts.mjs';
import { speedOf } from './repeats.mjs';

/** What is on: [{ action: that ends it, text, isRunning: it moves the film now, isTurn: the learner's to speak }]. */
export function marksOf({ run, section, settings }) {
  const marks = [];
  if (run?.kind === 'drill') {
    marks.push({ action: 'drill', text: drillText(run, settings), isRunning: true, isTurn: run.isWaiting });
  }
  if (run?.kind === 'loop') marks.push({ action: 'loopLine', text: t('practice.loopLine'), isRunning: true });
  if (section) {
    const text = t(section.toMs === null ? 'practice.sectionBegun' : 'practice.loopSection');
    marks.push({ action: 'loopSection', text, isRunning: true });
  }
  if (settings.autoPause) {
    const text = t(settings.hardOnly ? 'practice.autoPauseHard' : 'practice.autoPause');
    marks.push({ action: 'autoPause', text, isRunning: false });
  }
  for (const action of ['condensed', 'fastGaps']) {
    if (settings[action]) marks.push({ action, text: t(`practice.${action}`), isRunning: false });
  }
  return marks;
}

function drillText({ round, isWaiting }, settings) {
  if (isWaiting) return t('practice.yourTurn');
  const speed = speedText(speedOf(round, settings));
  const { rounds } = settings;
  return t('practice.round', { round: Math.min(round + 1, rounds), rounds, speed });
}

/** Small marks at the top for what is on, so that nobody wonders why the film stops; a press on one ends it. */
export class PracticeMarks {
  #document;
  #element;
  #button;
  #actions;
  #shown = '[]';

  constructor(document, actions) {
    this.#document = document;
    this.#element = document.getElementById('practice-marks');
    this.#button = document.getElementById('practice');
    this.#actions = actions;
  }

  show(shown) {
    const marks = marksOf(shown);
    const now = JSON.stringify(marks);
    if (now === this.#shown) return;
    this.#shown = now;
    this.#button.dataset.state = marks.length > 0 ? 'on' : 'off';
    const focused = this.#document.activeElement?.dataset.mark;
    this.#element.replaceChildren(...marks.map((mark) => this.#mark(mark)));
    if (focused) this.#element.querySelector(`[data-mark="${focused}"]`)?.focus({ focusVisible: false });
  }

  #mark({ action, text, isRunning, isTurn }) {
    const className = `mark${isRunning ? ' running' : ''}${isTurn ? ' turn' : ''}`;
    const properties = { className, textContent: text, title: t('practice.turnOff') };
    const mark = button(this.#document, properties, () => this.#actions[action]());
    mark.dataset.mark = action;
    return mark;
  }
}
