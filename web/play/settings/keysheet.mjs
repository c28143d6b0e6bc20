// SPDX-License-Identifier: GPL-3.0-or-later

import { button, create } from '../../shared/elements.mjs';
import { t } from '../../shared/texts.mjs';
import { Keymap, actionGroups, combinationsOf, keyText } from '../keys/keymap.mjs';

/** All keys on one sheet, each of which can be chosen anew: a press on it waits for the next key. */
export class KeySheet {
  #document;
  #panels;
  #preferences;
  #sheet;
  #said;
  #waitingFor = null; // { action, place }: the key that the next press replaces; place beyond the last adds one
  #taken = null; // { action, place, key, from }: waits for the learner's word

  constructor(document, panels, preferences) {
    this.#document = document;
    this.#panels = panels;
    this.#preferences = preferences;
    this.#sheet = document.getElementById('key-sheet');
    this.#said = create(document, 'p', { className: 'said', role: 'status' });
    panels.add('keys', { element: this.#sheet, opened: () => this.show(), closed: () => { this.#waitingFor = null; } });
    this.#sheet.addEventListener('keydown', (event) => this.#pressed(event), true);
    preferences.onChange(() => this.show());
  }

  actions = { keySheet: () => this.#panels.toggle('keys') };

  show() {
    if (!this.#panels.isOpen('keys')) return;
    const d = this.#document;
    const focused = d.activeElement?.id;
    const keymap = new Keymap(this.#preferences.get('keys'));
    this.#sheet.replaceChildren(
      create(d, 'header', {},
        create(d, 'h2', { id: 'keys-title' }, t('keys.title')),
        button(d, { className: 'plain' }, () => this.#reset(), t('keys.reset')),
        button(d, { className: 'close', ariaLabel: t('close') }, () => this.#panels.close(), '×')),
      create(d, 'p', { className: 'hint' }, t('keys.hint')), this.#said,
      create(d, 'div', { className: 'groups' }, ...actionGroups.map(([group, actions]) => create(d, 'section', {},
        create(d, 'h3', {}, t(`keys.${group}`)),
        create(d, 'dl', {}, ...Object.keys(actions).flatMap((action) => this.#row(action, keymap)))))));
    if (focused) d.getElementById(focused)?.focus();
  }

  #row(action, keymap) {
    const d = this.#document;
    const keys = keymap.keysOf(action);
    const name = t(`key.${action}`);
    const keyButtons = keys.map((key, place) => button(d, {
      id: `key-${action}-${place}`, className: 'key', ariaLabel: t('keys.change', { key: this.#text(key), name }),
    }, () => this.#wait(action, place), this.#isWaiting(action, place) ? '…' : this.#text(key)));
    const add = button(d, {
      id: `key-${action}-${keys.length}`, className: 'key add', ariaLabel: t('keys.add', { name }), title: t('keys.add', { name }),
    }, () => this.#wait(action, keys.length), this.#isWaiting(action, keys.length) ? '…' : '+');
    return [create(d, 'dt', {}, name), create(d, 'dd', {}, ...keyButtons, add)];
  }

  #text(key) {
    return keyText(key, t('key.space'));
  }

  #isWaiting(action, place) {
    return this.#waitingFor?.action === action && this.#waitingFor.place === place;
  }

  #wait(action, place) {
    this.#waitingFor = this.#isWaiting(action, place) ? null : { action, place };
    this.#say(this.#waitingFor ? t('keys.press', { name: t(`key.${action}`) }) : '');
    this.show();
    this.#document.getElementById(`key-${action}-${place}`)?.focus();
  }

  #pressed(event) {
    if (!this.#waitingFor) return;
    if (event.key === 'Tab') { // out of here, as everywhere
      this.#wait(this.#waitingFor.action, this.#waitingFor.place);
      return;
    }
    event.preventDefault();
    event.stopPropagation();
    const { action, place } = this.#waitingFor;
    if (event.key === 'Delete') {
      this.#waitingFor = null;
      this.#put(action, place, null);
      return;
    }
    const [key] = combinationsOf(event);
    if (!key) return; // a modifier alone: the rest follows
    this.#waitingFor = null;
    const from = new Keymap(this.#preferences.get('keys')).conflict(action, key);
    if (from) this.#ask({ action, place, key, from });
    else this.#put(action, place, key);
  }

  #ask(taken) {
    this.#taken = taken;
    this.show();
    const d = this.#document;
    const take = button(d, { className: 'strong' }, () => this.#take(), t('keys.take'));
    this.#said.replaceChildren(t('keys.taken', { key: this.#text(taken.key), name: t(`key.${taken.from}`) }), ' ', take, ' ',
      button(d, { className: 'plain' }, () => this.#say(''), t('cancel')));
    take.focus();
  }

  #take() {
    const { action, place, key, from } = this.#taken;
    const keymap = new Keymap(this.#preferences.get('keys'));
    this.#preferences.change('keys', { [from]: keymap.keysOf(from).filter((each) => each !== key) });
    this.#put(action, place, key);
  }

  // key: null takes the place's key away.
  #put(action, place, key) {
    const keys = [...new Keymap(this.#preferences.get('keys')).keysOf(action)];
    keys.splice(place, 1, ...(key ? [key] : []));
    this.#say('');
    this.#preferences.change('keys', { [action]: [...new Set(keys)] });
    this.#document.getElementById(`key-${action}-${place}`)?.focus();
  }

  #reset() {
    this.#say('');
    this.#waitingFor = null;
    this.#preferences.reset('keys');
  }

  #say(text) {
    this.#said.textContent = text;
  }
}
