// SPDX-License-Identifier: GPL-3.0-or-later

import { fromLeftToRight } from '../../shared/direction.mjs';
import { button, create, keepFocus } from '../../shared/elements.mjs';
import { keyName } from '../../shared/keyname.mjs';
import { t } from '../../shared/texts.mjs';
import { Keymap, actionGroups, combinationsOf } from '../keys/keymap.mjs';
import { statusOfAction } from '../words/statuschoice.mjs';
import { keptKeys } from './keptkeys.mjs';

const nameOf = (action) => t(action in statusOfAction ? `status.${statusOfAction[action]}` : `key.${action}`);

/** All keys on one sheet, each of which can be chosen anew: a press on it waits for the next key. */
export class KeySheet {
  #document;
  #panels;
  #preferences;
  #sheet;
  #said;
  #waitingFor = null; // { action, place }: the key that the next press replaces; place beyond the last adds one

  constructor(document, panels, preferences) {
    this.#document = document;
    this.#panels = panels;
    this.#preferences = preferences;
    this.#sheet = document.getElementById('key-sheet');
    this.#said = create(document, 'p', { className: 'said', role: 'status' });
    this.#sheet.append(this.#said);
    panels.add('keys', { element: this.#sheet, opened: () => this.show(), closed: () => this.#ask(null) });
    this.#sheet.addEventListener('keydown', (event) => this.#pressed(event), true);
    preferences.onChange(() => this.show());
  }

  actions = { keySheet: () => this.#panels.toggle('keys') };

  show() {
    if (this.#panels.isOpen('keys')) keepFocus(this.#sheet, () => this.#draw());
  }

  get #keymap() {
    return new Keymap(keptKeys(this.#preferences.get('keys')));
  }

  #draw() {
    const d = this.#document;
    const keymap = this.#keymap;
    // What is said stays in the page: screen readers miss what comes with its place.
    for (const each of [...this.#sheet.children]) if (each !== this.#said) each.remove();
    this.#said.before(
      create(d, 'header', {},
        create(d, 'h2', { id: 'keys-title' }, t('keys.title')),
        button(d, { id: 'keys-reset', className: 'plain' }, () => this.#reset(), t('keys.reset')),
        button(d, { id: 'keys-close', className: 'close', ariaLabel: t('close') }, () => this.#panels.close(), '×')),
      create(d, 'p', { className: 'hint' }, t('keys.hint')));
    this.#said.after(
      create(d, 'div', { className: 'groups' }, ...actionGroups.map(([group, actions]) => create(d, 'section', {},
        create(d, 'h3', {}, t(`keys.${group}`)),
        create(d, 'dl', {}, ...Object.keys(actions).flatMap((action) => this.#row(action, keymap)))))));
  }

  #row(action, keymap) {
    const d = this.#document;
    const keys = keymap.keysOf(action);
    const name = nameOf(action);
    const keyButtons = keys.map((key, place) => button(d, {
      id: `key-${action}-${place}`,
      className: 'key',
      dir: 'ltr',
      ariaLabel: t('keys.change', { key: keyName(key), name }),
    }, () => this.#wait(action, place), this.#isWaiting(action, place) ? '…' : keyName(key)));
    const add = button(d, {
      id: `key-${action}-${keys.length}`,
      className: 'key add',
      ariaLabel: t('keys.add', { name }),
      title: t('keys.add', { name }),
    }, () => this.#wait(action, keys.length), this.#isWaiting(action, keys.length) ? '…' : '+');
    return [create(d, 'dt', {}, name), create(d, 'dd', {}, ...keyButtons, add)];
  }

  #isWaiting(action, place) {
    return this.#waitingFor?.action === action && this.#waitingFor.place === place;
  }

  #wait(action, place) {
    const isWaiting = this.#isWaiting(action, place);
    this.#ask(null);
    if (!isWaiting) {
      this.#waitingFor = { action, place };
      this.#said.textContent = t('keys.press', { name: nameOf(action) });
    }
    this.show();
    this.#focus(action, place);
  }

  #pressed(event) {
    if (!this.#waitingFor) {
      // The key that has just been chosen, still held, is no answer to what is asked about it.
      if (event.repeat && /^( |Enter)$/.test(event.key)) event.preventDefault();
      return;
    }
    const { action, place } = this.#waitingFor;
    if (event.key === 'Tab') { // out of here, as everywhere
      this.#wait(action, place);
      return;
    }
    event.preventDefault();
    event.stopPropagation();
    if (event.repeat) return; // the key that pressed the button, still held
    if (event.key === 'Delete') {
      this.#put(action, place, null);
      return;
    }
    const [key] = combinationsOf(event);
    if (!key) return; // a modifier alone: the rest follows
    const from = this.#keymap.conflict(action, key);
    if (from) this.#ask({ action, place, key, from });
    else this.#put(action, place, key);
  }

  // taken: { action, place, key, from }; null takes the question and what was waited for back.
  #ask(taken) {
    this.#waitingFor = null;
    this.#said.replaceChildren();
    if (!taken) return;
    const { action, place, key, from } = taken;
    const d = this.#document;
    const take = button(d, { className: 'strong' }, () => this.#take(taken), t('keys.take'));
    const sentence = t('keys.taken', { key: fromLeftToRight(keyName(key)), name: nameOf(from) });
    const leave = () => { this.#ask(null); this.#focus(action, place); };
    this.#said.append(create(d, 'span', {}, sentence), take, button(d, { className: 'plain' }, leave, t('cancel')));
    this.show();
    take.focus();
  }

  #take({ action, place, key, from }) {
    const keys = this.#keymap.keysOf(from).filter((each) => each !== key);
    this.#preferences.change('keys', { [from]: keys });
    this.#put(action, place, key);
  }

  // key: null takes the place's key away.
  #put(action, place, key) {
    const keys = [...this.#keymap.keysOf(action)];
    keys.splice(place, 1, ...(key ? [key] : []));
    this.#ask(null);
    this.#preferences.change('keys', { [action]: [...new Set(keys)] });
    this.#focus(action, place);
  }

  #focus(action, place) {
    const last = this.#keymap.keysOf(action).length;
    this.#document.getElementById(`key-${action}-${Math.min(place, last)}`)?.focus();
  }

  #reset() {
    this.#ask(null);
    this.#preferences.reset('keys');
  }
}
