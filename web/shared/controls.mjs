// SPDX-License-Identifier: GPL-3.0-or-later

import { button, create } from './elements.mjs';

/** A choice of few: a named group of radio buttons that look like chips. chosen(value): the learner's choice. */
export class Chips {
  #inputs = new Map();

  /** options: [[value, text], ...]; name: unique in the page. */
  constructor(document, name, legend, options, chosen) {
    const labels = options.map(([value, text]) => {
      const input = create(document, 'input', { type: 'radio', id: `${name}-${value}`, name, value });
      input.addEventListener('change', () => chosen(value));
      this.#inputs.set(value, input);
      return create(document, 'label', { className: 'chip' }, input, create(document, 'span', {}, text));
    });
    this.element = create(document, 'div', { className: 'chips', role: 'radiogroup', ariaLabel: legend },
      create(document, 'span', { className: 'name' }, legend), create(document, 'div', {}, ...labels));
  }

  show(value) {
    const input = this.#inputs.get(value);
    if (input) input.checked = true;
  }
}

/** A switch with its name, what it means beneath it, and its key beside it. */
export class Switch {
  #isOn = false;

  /** meaning, key: may be missing. changed(isOn): the learner's choice; only show() turns the switch. */
  constructor(document, { name, meaning = '', key = '' }, changed) {
    const text = create(document, 'span', { className: 'name' }, name);
    if (meaning) text.append(create(document, 'small', {}, meaning));
    this.element = button(document, { className: 'switch', role: 'switch' }, () => changed(!this.#isOn), text);
    if (key) this.element.append(create(document, 'kbd', { dir: 'ltr' }, key));
    this.element.append(create(document, 'span', { className: 'knob' }));
    this.show(false);
  }

  show(isOn) {
    this.#isOn = isOn;
    this.element.setAttribute('aria-checked', String(isOn));
  }
}

/** A number that is chosen by dragging, with its value beside it. text(value): how it reads. */
export class Slider {
  #input;
  #output;
  #text;

  constructor(document, name, { least, most, step }, text, changed) {
    this.#text = text;
    this.#input = create(document, 'input', { type: 'range', min: least, max: most, step, ariaLabel: name });
    this.#output = create(document, 'span', { className: 'value' });
    this.#input.addEventListener('input', () => changed(Number(this.#input.value)));
    this.element = create(document, 'div', { className: 'slider' },
      create(document, 'span', { className: 'name' }, name), this.#input, this.#output);
  }

  show(value) {
    const { min, max } = this.#input;
    this.#input.value = value;
    this.#input.style.setProperty('--filled', `${((value - min) / (max - min)) * 100}%`);
    this.#input.setAttribute('aria-valuetext', this.#text(value));
    this.#output.textContent = this.#text(value);
  }
}
