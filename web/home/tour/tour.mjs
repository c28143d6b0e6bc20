// SPDX-License-Identifier: GPL-3.0-or-later

import { create } from '../../shared/elements.mjs';
import { t } from '../../shared/texts.mjs';
import { levelChoice } from '../frame/levelmeter.mjs';

/** Three steps that show a new learner what there is; they lie in the place of the views. */
export class Tour {
  #document;
  #root;
  #steps;
  #tools;
  #at = 0;

  /** tools: { begun(), ended(), chooseLanguage(button), startLevel() tells it, setStartLevel(level) }. */
  constructor(document, tools) {
    this.#document = document;
    this.#tools = tools;
    this.#root = document.getElementById('tour');
    this.#steps = [...this.#root.querySelectorAll('.step')];
    this.#element('tour-skip').addEventListener('click', () => this.end());
    this.#element('tour-back').addEventListener('click', () => this.#show(this.#at - 1));
    this.#element('tour-next').addEventListener('click', () => this.#next());
    this.#element('tour-language').addEventListener('click', (event) => tools.chooseLanguage(event.currentTarget));
    this.#element('tour-level').addEventListener('change', (event) => tools.setStartLevel(event.target.value));
    this.#root.addEventListener('keydown', (event) => {
      if (event.key === 'Escape') this.end();
    });
  }

  get isOpen() {
    return !this.#root.hidden;
  }

  begin() {
    this.#root.hidden = false;
    this.#document.body.classList.add('on-tour');
    this.#tools.begun();
    this.#show(0);
  }

  end() {
    if (!this.isOpen) return;
    this.#root.hidden = true;
    this.#document.body.classList.remove('on-tour');
    this.#tools.ended();
  }

  /** After the learner or the language of the interface has changed. */
  render() {
    if (!this.isOpen) return;
    const count = this.#steps.length;
    const isLast = this.#at === count - 1;
    this.#steps.forEach((step, i) => {
      step.hidden = i !== this.#at;
      step.querySelector('h3').id = i === this.#at ? 'tour-title' : '';
    });
    this.#element('tour-back').hidden = this.#at === 0;
    this.#element('tour-skip').hidden = isLast;
    this.#element('tour-next').textContent = t(isLast ? 'tour.begin' : 'tour.next');
    this.#element('tour-place').textContent = t('tour.place', { at: this.#at + 1, total: count });
    this.#element('tour-dots').replaceChildren(...this.#steps.map((_, i) =>
      create(this.#document, 'span', { className: i === this.#at ? 'dot now' : 'dot' })));
    const { textContent, lang } = this.#element('selected-name');
    Object.assign(this.#element('tour-language'), { textContent, lang });
    this.#showLevels();
  }

  #showLevels() {
    const place = this.#element('tour-level');
    const hadFocus = place.contains(this.#document.activeElement);
    place.querySelector('.levels')?.remove();
    place.append(levelChoice(this.#document, 'tour-start-level', 'tour-level-ask', this.#tools.startLevel()));
    if (hadFocus) place.querySelector('input:checked')?.focus();
  }

  #next() {
    if (this.#at === this.#steps.length - 1) this.end();
    else this.#show(this.#at + 1);
  }

  #show(at) {
    this.#at = at;
    this.render();
    this.#element('tour-next').focus();
  }

  #element(id) {
    return this.#document.getElementById(id);
  }
}
