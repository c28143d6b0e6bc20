// SPDX-License-Identifier: GPL-3.0-or-later

// How the lines over the picture look, as the learner has set it: carried from the preferences to the elements.

import { lineNames } from '../lines/subtitles.mjs';

export const looks = {
  show: ['always', 'pause', 'hover', 'key', 'never'],
  font: ['sans', 'serif', 'wide', 'mono'],
  edge: ['outline', 'shade', 'box'],
  colour: ['white', 'warm', 'yellow', 'sky', 'mint'],
  place: ['below', 'above'],
};

export const sizes = { least: 50, most: 250, step: 10 };
export const heights = { least: 0, most: 60, step: 2 };

const within = (value, { least, most }) => Math.min(most, Math.max(least, Number.isFinite(value) ? value : least));

/** One of a look's values; what is none of them counts as the first. */
export function lookOf(look, value) {
  return looks[look].includes(value) ? value : looks[look][0];
}

/** The fields that change for a line to be shown otherwise: what is hidden knows how it was shown before. */
export function withShow(look, show) {
  return show === 'never' && look.show !== 'never' ? { show, shownAs: look.show } : { show };
}

/** The fields that change for a line to be hidden, or shown again as before. */
export function toggledShow(look) {
  if (look.show !== 'never') return withShow(look, 'never');
  return { show: look.shownAs === 'never' ? 'always' : lookOf('show', look.shownAs) };
}

export class LinesLook {
  #document;
  #preferences;
  #hidden;

  /** hidden(name): a line was hidden by its key. */
  constructor(document, preferences, hidden) {
    this.#document = document;
    this.#preferences = preferences;
    this.#hidden = hidden;
    preferences.onChange(() => this.update());
    this.update();
  }

  actions = {
    toggleLearned: () => this.#toggle('learned'),
    toggleNative: () => this.#toggle('native'),
    biggerLines: () => this.#resize(1),
    smallerLines: () => this.#resize(-1),
    higherLines: () => this.#raise(1),
    lowerLines: () => this.#raise(-1),
    wordColours: () => this.#preferences.change('lines', { colours: !this.#preferences.get('lines').colours }),
  };

  /** While a key is held, what is hidden shows. */
  peek(isHeld) {
    this.#document.body.classList.toggle('peeking', isHeld);
  }

  update() {
    const { body, documentElement } = this.#document;
    const { raisedPercent, colours } = this.#preferences.get('lines');
    documentElement.style.setProperty('--lines-raised', `${within(raisedPercent, heights)}vh`);
    body.classList.toggle('coloured', colours);
    for (const name of lineNames) {
      const look = this.#preferences.get(name);
      const element = this.#document.getElementById(name);
      for (const each of ['show', 'font', 'edge', 'colour']) element.dataset[each] = lookOf(each, look[each]);
      element.style.setProperty('--size', within(look.sizePercent, sizes) / 100);
      this.#put(element, lookOf('place', look.place));
    }
  }

  // The upper line comes first wherever both are in one place.
  #put(element, place) {
    const home = this.#document.getElementById(place === 'above' ? 'lines-above' : 'lines');
    if (element.parentElement === home) return;
    if (element.id === lineNames[0]) home.prepend(element);
    else home.append(element);
  }

  #toggle(name) {
    const change = toggledShow(this.#preferences.get(name));
    this.#preferences.change(name, change);
    if (change.show === 'never') this.#hidden(name);
  }

  #resize(direction) {
    for (const name of lineNames) {
      const { sizePercent } = this.#preferences.get(name);
      this.#preferences.change(name, { sizePercent: within(sizePercent + direction * sizes.step, sizes) });
    }
  }

  #raise(direction) {
    const { raisedPercent } = this.#preferences.get('lines');
    this.#preferences.change('lines', { raisedPercent: within(raisedPercent + direction * heights.step, heights) });
  }
}
