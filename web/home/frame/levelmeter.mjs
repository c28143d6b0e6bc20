// SPDX-License-Identifier: GPL-3.0-or-later

// The learner's level of English in the page's header, with how far it is to the next one, and the panel behind it:
// what the level rests on, and the level at which the learner began.

import { create } from '../../shared/elements.mjs';
import { number, t } from '../../shared/texts.mjs';
import { Popover } from './popover.mjs';

const levels = ['A1', 'A2', 'B1', 'B2', 'C1', 'C2'];
const counts = ['vocabulary', 'learningWords', 'knownWords'];

/** What the meter shows, as a sentence. */
export function levelText({ level, nextLevel, percentToNext, vocabulary }) {
  const words = t('level.words', { count: vocabulary });
  if (!nextLevel) return t('level.there', { level, words });
  return t('level.onTheWay', { level, percent: percentToNext, next: nextLevel, words });
}

export class LevelMeter {
  #document;
  #meter;
  #panel;
  #popover;
  #chosen;
  #reply = null;
  #startLevel = '';

  /** chosen(level) when the learner says at which level they began. */
  constructor(document, chosen) {
    this.#document = document;
    this.#meter = document.getElementById('level');
    this.#panel = document.getElementById('level-panel');
    this.#popover = new Popover(document, this.#meter, this.#panel);
    this.#chosen = chosen;
    this.#panel.addEventListener('change', (event) => this.#chosen(event.target.value));
  }

  /** reply: of the route; startLevel: of the settings. */
  show(reply, startLevel) {
    this.#reply = reply;
    this.#startLevel = startLevel;
    this.render();
  }

  /** What is known of it, as it was told last. */
  render() {
    const reply = this.#reply;
    if (!reply) return;
    const part = (name) => this.#meter.querySelector(name);
    part('.now').textContent = reply.level;
    part('.next').textContent = reply.nextLevel ?? '';
    part('.filled').style.width = `${reply.percentToNext}%`;
    part('.sentence').textContent = levelText(reply);
    this.#meter.title = levelText(reply);
    this.#meter.hidden = false;
    this.#showPanel();
  }

  #showPanel() {
    const make = (...rest) => create(this.#document, ...rest);
    const hadFocus = this.#panel.contains(this.#document.activeElement);
    this.#panel.replaceChildren(
      make('h2', { id: 'level-title', textContent: t('level.title', { level: this.#reply.level }) }),
      make('p', { className: 'sentence', textContent: levelText(this.#reply) }),
      make('dl', {}, ...counts.map((name) => make('div', {},
        make('dt', { textContent: t(`level.count.${name}`) }),
        make('dd', { textContent: number(this.#reply[name]) })))),
      make('p', { id: 'level-ask', textContent: t('level.ask') }),
      levelChoice(this.#document, 'start-level', 'level-ask', this.#startLevel));
    if (hadFocus && this.#popover.isOpen) this.#panel.querySelector('input:checked')?.focus();
  }
}

/** The six levels to choose from; name: of the choice, labelId: what asks for it. */
export function levelChoice(document, name, labelId, level) {
  const option = (each) => create(document, 'label', { title: t(`level.of.${each}`) },
    create(document, 'input', { type: 'radio', name, value: each, checked: each === level }),
    create(document, 'span', { textContent: each }));
  const properties = { className: 'levels', role: 'radiogroup', 'aria-labelledby': labelId };
  return create(document, 'div', properties, ...levels.map(option));
}
