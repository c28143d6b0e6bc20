// SPDX-License-Identifier: GPL-3.0-or-later

import { speedText } from '../bar/speedtext.mjs';
import { Switch } from '../../shared/controls.mjs';
import { button, create } from '../../shared/elements.mjs';
import { keyName } from '../../shared/keyname.mjs';
import { t } from '../../shared/texts.mjs';

// What the steppers go through.
const roundChoices = [1, 2, 3, 4, 5, 6, 8, 10];
const speedChoices = [[0.5, 0.75, 1], [0.6, 0.8, 1], [0.7, 0.85, 1], [0.8, 0.9, 1], [0.7], [0.85], [1]];
const gapChoices = [0, 50, 80, 100, 120, 150, 200, 300];
const secondChoices = [2, 3, 4, 5, 7, 10, 15, 30];
const gapSpeedChoices = [1.3, 1.5, 1.75, 2, 2.5, 3, 4];

const same = (a, b) => JSON.stringify(a) === JSON.stringify(b);

/** The choice that is by so many steps further; from a value that is none of them, the nearest in that direction. */
export function stepped(choices, value, step) {
  const found = choices.findIndex((choice) => same(choice, value));
  if (found >= 0) return choices[Math.min(choices.length - 1, Math.max(0, found + step))];
  const larger = choices.findIndex((choice) => choice > value);
  const place = larger < 0 ? choices.length : larger;
  return choices[Math.min(choices.length - 1, Math.max(0, step > 0 ? place : place - 1))];
}

/** The panel of the line tools: switches and numbers, with the key of each. */
export class PracticePanel {
  #document;
  #preferences;
  #actions;
  #keyOf;
  #panels;
  #panel;
  #shows = []; // each shows one control's state
  #shown = null;

  /** panels: SidePanels; actions: by their names; keyOf(action): its key combination, or undefined. */
  constructor(document, panels, preferences, actions, keyOf) {
    this.#document = document;
    this.#panels = panels;
    this.#preferences = preferences;
    this.#actions = actions;
    this.#keyOf = keyOf;
    this.#panel = document.getElementById('practice-panel');
    panels.add('practice', {
      element: this.#panel,
      button: document.getElementById('practice'),
      opened: () => { this.#fill(); this.#showControls(); },
    });
  }

  toggle() {
    this.#panels.toggle('practice');
  }

  /** shown: { run, section, settings, hasLines }. Draws nothing while the panel is closed. */
  show(shown) {
    this.#shown = shown;
    if (this.#panels.isOpen('practice')) this.#showControls();
  }

  #showControls() {
    for (const each of this.#shows) each(this.#shown);
  }

  #gapText(percent) {
    return percent ? t('practice.percent', { percent }) : t('practice.none');
  }

  // Made when it is opened, in the language of that moment.
  #fill() {
    this.#shows = [];
    this.#panel.replaceChildren(
      create(this.#document, 'header', {},
        create(this.#document, 'h2', { id: 'practice-title', textContent: t('practice.title') }),
        button(this.#document, { className: 'close', title: t('close'), ariaLabel: t('close') },
          () => this.#panels.close(), '×')),
      this.#noLines(),
      this.#section('practice.afterLines',
        this.#switch('autoPause'),
        this.#switch('hardOnly', 'practice.hardOnly')),
      this.#section('practice.thisLine',
        this.#row(this.#press('replayThenPause'), this.#press('playToNextEnd')),
        this.#row(this.#press('loopLine', ({ run }) => run?.kind === 'loop'),
          this.#press('loopSection', ({ section }) => section !== null))),
      this.#section('practice.drill',
        this.#row(this.#press('drill', ({ run }) => run?.kind === 'drill', 'practice.drillThisLine')),
        this.#stepper('rounds', roundChoices, (count) => t('practice.times', { count })),
        this.#stepper('speeds', speedChoices, (speeds) => speeds.map(speedText).join(' · ')),
        this.#stepper('gapPercent', gapChoices, (percent) => this.#gapText(percent)),
        this.#switch('thenNext', 'practice.thenNext')),
      this.#section('practice.silences',
        this.#switch('condensed'),
        this.#stepper('condensedSeconds', secondChoices, (seconds) => t('practice.seconds', { seconds })),
        this.#switch('fastGaps'),
        this.#stepper('fastGapSpeed', gapSpeedChoices, speedText),
        this.#stepper('fastGapSeconds', secondChoices, (seconds) => t('practice.seconds', { seconds }))));
  }

  #noLines() {
    const element = create(this.#document, 'p', { className: 'no-lines', textContent: t('practice.noLines') });
    this.#shows.push(({ hasLines }) => { element.hidden = hasLines; });
    return element;
  }

  #section(title, ...controls) {
    const heading = create(this.#document, 'h3', { textContent: t(title) });
    return create(this.#document, 'section', { role: 'group', ariaLabel: t(title) }, heading, ...controls);
  }

  #row(...controls) {
    return create(this.#document, 'div', { className: 'row' }, ...controls);
  }

  #keyOfAction(action) {
    const key = this.#keyOf(action);
    return key ? keyName(key) : '';
  }

  // A setting that is on or off; where there is an action of its name, by that and with its key.
  #switch(name, title = `practice.${name}`) {
    const changed = this.#actions[name] ?? ((isOn) => this.#change(name, isOn));
    const made = new Switch(this.#document, { name: t(title), key: this.#keyOfAction(name) }, changed);
    this.#shows.push(({ settings }) => made.show(settings[name]));
    return made.element;
  }

  // isOn(shown): of what stays on until it is pressed again.
  #press(action, isOn = null, title = `practice.${action}`) {
    const element = button(this.#document, { className: 'plain' }, () => this.#actions[action](),
      create(this.#document, 'span', { className: 'name', textContent: t(title) }));
    const key = this.#keyOfAction(action);
    if (key) element.append(create(this.#document, 'kbd', { dir: 'ltr', textContent: key }));
    this.#shows.push((shown) => {
      element.disabled = !shown.hasLines && action !== 'loopSection';
      if (isOn) element.setAttribute('aria-pressed', String(isOn(shown)));
    });
    return element;
  }

  #stepper(name, choices, textOf) {
    const title = t(`practice.${name}`);
    const value = create(this.#document, 'output', { id: `practice-${name}`, dir: 'auto' });
    const step = (by, sign, key) => button(this.#document, { ariaLabel: t(key, { name: title }) },
      () => this.#change(name, stepped(choices, this.#preferences.get('practice')[name], by)), sign);
    const less = step(-1, '−', 'practice.less');
    const more = step(1, '+', 'practice.more');
    this.#shows.push(({ settings }) => {
      const text = textOf(settings[name]);
      if (value.textContent !== text) value.textContent = text;
      less.classList.toggle('last', same(settings[name], choices[0]));
      more.classList.toggle('last', same(settings[name], choices[choices.length - 1]));
    });
    return create(this.#document, 'div', { className: 'stepper', role: 'group', ariaLabel: title },
      create(this.#document, 'span', { className: 'name', textContent: title }), less, value, more);
  }

  #change(name, value) {
    this.#preferences.change('practice', { [name]: value });
  }
}
