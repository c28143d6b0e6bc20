// SPDX-License-Identifier: GPL-3.0-or-later

import { create } from '../../shared/elements.mjs';
import { button } from '../../shared/elements.mjs';
import { interfaceLanguages, number, t } from '../../shared/texts.mjs';
import { lineNames } from '../lines/subtitles.mjs';
import { Chips, Slider, Switch } from './chips.mjs';
import { heights, lookOf, looks, sizes } from './lineslook.mjs';

const percent = (value) => t('settings.percent', { value: number(value) });
const classOfStatus = { unknown: 'unknown', new: 'fresh', learning: 'learning', known: '' };

/** How the lines look and what words tell: everything shows in the lines at once. */
export class SettingsPanel {
  #document;
  #panels;
  #preferences;
  #panel;
  #shown = []; // what each control shows, carried out again after every change
  #language = null;

  /** panels: SidePanels; openKeys(): shows the sheet of keys. */
  constructor(document, panels, preferences, openKeys) {
    this.#document = document;
    this.#panels = panels;
    this.#preferences = preferences;
    this.#panel = document.getElementById('settings-panel');
    this.openKeys = openKeys;
    panels.add('settings', { element: this.#panel, button: document.getElementById('settings'), opened: () => this.show() });
    preferences.onChange(() => this.show());
  }

  actions = { settings: () => this.#panels.toggle('settings') };

  /** To be called after the language of the interface has changed. */
  translate() {
    this.#language = null;
    this.show();
  }

  show() {
    if (!this.#panels.isOpen('settings')) return;
    if (this.#language === null) this.#build();
    for (const show of this.#shown) show();
  }

  #build() {
    const d = this.#document;
    this.#language = true;
    this.#shown = [];
    this.#panel.replaceChildren(
      create(d, 'header', {},
        create(d, 'h2', { id: 'settings-title' }, t('settings.title')),
        button(d, { className: 'close', ariaLabel: t('close') }, () => this.#panels.close(), '×')),
      ...lineNames.map((name) => this.#lineSection(name)),
      this.#bothSection(), this.#wordSection(), this.#interfaceSection());
  }

  #section(title, ...children) {
    return create(this.#document, 'section', {}, create(this.#document, 'h3', {}, title), ...children);
  }

  #lineSection(name) {
    const chips = ['show', 'edge', 'font', 'colour', 'place'].map((look) => this.#chips(name, look));
    const size = new Slider(this.#document, t('settings.size'), sizes, percent,
      (sizePercent) => this.#preferences.change(name, { sizePercent }));
    this.#shown.push(() => size.show(this.#preferences.get(name).sizePercent));
    return this.#section(t(`lines.${name}`), chips[0].element, size.element, ...chips.slice(1).map((each) => each.element));
  }

  #chips(name, look) {
    const options = looks[look].map((value) => [value, t(`look.${look}.${value}`)]);
    const chips = new Chips(this.#document, `${name}-${look}`, t(`look.${look}`), options,
      (value) => this.#preferences.change(name, { [look]: value }));
    this.#shown.push(() => chips.show(lookOf(look, this.#preferences.get(name)[look])));
    return chips;
  }

  #bothSection() {
    const height = new Slider(this.#document, t('settings.height'), heights, percent,
      (raisedPercent) => this.#preferences.change('lines', { raisedPercent }));
    this.#shown.push(() => height.show(this.#preferences.get('lines').raisedPercent));
    return this.#section(t('settings.both'), height.element,
      this.#switch('pausesOnHover', 'settings.pausesOnHover', 'settings.pausesOnHoverMeans'),
      this.#switch('arrowsStepLines', 'settings.arrowsStepLines', 'settings.arrowsStepLinesMeans'));
  }

  #wordSection() {
    const d = this.#document;
    const legend = Object.entries(classOfStatus).map(([status, name]) => create(d, 'li', {},
      create(d, 'span', { className: `word ${name}`, lang: 'en', textContent: 'word' }), ' ', t(`legend.${status}`)));
    return this.#section(t('settings.words'), this.#switch('colours', 'settings.colours', ''),
      create(d, 'ul', { className: 'legend' }, ...legend));
  }

  #switch(field, name, meaning) {
    const each = new Switch(this.#document, t(name), meaning ? t(meaning) : '',
      (isOn) => this.#preferences.change('lines', { [field]: isOn }));
    this.#shown.push(() => each.show(this.#preferences.get('lines')[field]));
    return each.element;
  }

  #interfaceSection() {
    const d = this.#document;
    const named = [...interfaceLanguages.values()].map((tag) => [tag, new Intl.DisplayNames(tag, { type: 'language' }).of(tag)]);
    const language = new Chips(d, 'interface-language', t('settings.language'), [['', t('settings.ownLanguage')], ...named],
      (value) => this.#preferences.change('interface', { language: value }));
    this.#shown.push(() => language.show(this.#preferences.get('interface').language));
    return this.#section(t('settings.program'), language.element,
      create(d, 'p', { className: 'row' },
        button(d, { className: 'plain' }, () => this.openKeys(), t('keys.title')),
        button(d, { className: 'plain' }, () => this.#reset(), t('settings.reset'))));
  }

  #reset() {
    for (const name of [...lineNames, 'lines']) this.#preferences.reset(name);
  }
}
