// SPDX-License-Identifier: GPL-3.0-or-later

import { Chips, Slider, Switch } from '../../shared/controls.mjs';
import { button, create, keepFocus } from '../../shared/elements.mjs';
import { keyName } from '../../shared/keyname.mjs';
import { interfaceLanguages, t } from '../../shared/texts.mjs';
import { Keymap } from '../keys/keymap.mjs';
import { lineNames } from '../lines/subtitles.mjs';
import { wordClasses } from '../words/filmwords.mjs';
import { keptKeys } from './keptkeys.mjs';
import { heights, lookOf, looks, sizes, withShow } from './lineslook.mjs';
import { LooksReset } from './looksreset.mjs';

const percent = (value) => t('bar.percent', { percent: value });
const legend = [['unknown', 'unknown'], ['new', 'new'], ['learning', 'learning1'], ['known', 'known']]; // name, status

/** How the lines look and what words tell: everything shows in the lines at once. */
export class SettingsPanel {
  #document;
  #panels;
  #preferences;
  #panel;
  #shown = []; // what each control shows, carried out again after every change
  #isBuilt = false; // in the language and with the keys of now
  #reset;
  #said;

  /** panels: SidePanels; openKeys(): shows the sheet of keys. */
  constructor(document, panels, preferences, openKeys) {
    this.#document = document;
    this.#panels = panels;
    this.#preferences = preferences;
    this.#panel = document.getElementById('settings-panel');
    this.openKeys = openKeys;
    this.#reset = new LooksReset(preferences, [...lineNames, 'lines']);
    this.#said = create(document, 'p', { className: 'said', role: 'status' });
    panels.add('settings', {
      element: this.#panel,
      button: document.getElementById('settings'),
      opened: () => this.translate(), // with the keys of now
      closed: () => this.#reset.forget(),
    });
    preferences.onChange(() => this.show());
  }

  actions = { settings: () => this.#panels.toggle('settings') };

  /** To be called after the language of the interface has changed. */
  translate() {
    this.#isBuilt = false;
    this.show();
  }

  show() {
    if (!this.#panels.isOpen('settings')) return;
    keepFocus(this.#panel, () => {
      if (!this.#isBuilt) this.#build();
      for (const show of this.#shown) show();
    });
  }

  #build() {
    const d = this.#document;
    this.#isBuilt = true;
    this.#shown = [() => this.#showReset()];
    this.#said.replaceChildren();
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
    const [show, ...others] = chips.map(({ element }) => element);
    return this.#section(t(`lines.${name}`), show, size.element, ...others);
  }

  #chips(name, look) {
    const key = this.#peekKey();
    const options = looks[look].map((value) => [value, t(`look.${look}.${value}`, { key })]);
    const chips = new Chips(this.#document, `${name}-${look}`, t(`look.${look}`), options,
      (value) => this.#choose(name, look, value));
    this.#shown.push(() => chips.show(lookOf(look, this.#preferences.get(name)[look])));
    return chips;
  }

  #peekKey() {
    const [key] = new Keymap(keptKeys(this.#preferences.get('keys'))).keysOf('peek');
    return key ? keyName(key) : '…';
  }

  #choose(name, look, value) {
    const fields = look === 'show' ? withShow(this.#preferences.get(name), value) : { [look]: value };
    this.#preferences.change(name, fields);
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
    const marks = legend.map(([name, status]) => create(d, 'li', {},
      create(d, 'span', { className: `word ${wordClasses[status] ?? ''}`, lang: 'en', textContent: 'word' }), ' ',
      t(`legend.${name}`)));
    return this.#section(t('settings.words'), this.#switch('colours', 'settings.colours', ''),
      create(d, 'ul', { className: 'legend' }, ...marks));
  }

  #switch(field, name, meaning) {
    const each = new Switch(this.#document, { name: t(name), meaning: meaning && t(meaning) },
      (isOn) => this.#preferences.change('lines', { [field]: isOn }));
    this.#shown.push(() => each.show(this.#preferences.get('lines')[field]));
    return each.element;
  }

  #interfaceSection() {
    const d = this.#document;
    const nameOf = (tag) => new Intl.DisplayNames(tag, { type: 'language' }).of(tag);
    const choices = [['', t('settings.ownLanguage')], ...[...interfaceLanguages.values()].map((tag) => [tag, nameOf(tag)])];
    const language = new Chips(d, 'interface-language', t('settings.language'), choices,
      (value) => this.#preferences.change('interface', { language: value }));
    this.#shown.push(() => language.show(this.#preferences.get('interface').language));
    return this.#section(t('settings.program'), language.element,
      create(d, 'p', { className: 'row' },
        button(d, { className: 'plain' }, () => this.openKeys(), t('keys.title')),
        button(d, { id: 'settings-reset', className: 'plain' }, () => this.#resetLooks(), t('settings.reset'))),
      this.#said);
  }

  #resetLooks() {
    this.#reset.reset();
    this.show();
    this.#said.scrollIntoView({ block: 'nearest' });
  }

  #showReset() {
    const { canUndo } = this.#reset;
    if (canUndo === this.#said.hasChildNodes()) return;
    if (!canUndo) {
      this.#said.replaceChildren();
      return;
    }
    const undo = button(this.#document, { className: 'plain' }, () => this.#undoReset(), t('fit.undo'));
    this.#said.append(create(this.#document, 'span', {}, t('settings.wasReset')), undo);
  }

  #undoReset() {
    const hadFocus = this.#said.contains(this.#document.activeElement);
    this.#reset.undo();
    if (hadFocus) this.#document.getElementById('settings-reset').focus(); // what had the keyboard is gone
  }
}
