// SPDX-License-Identifier: GPL-3.0-or-later

import { Keymap } from './keymap.mjs';

// What a held key must not do again and again.
const onePress = new Set([
  'subtitlePanel', 'nextSubtitle', 'settings', 'keySheet', 'transcript', 'practicePanel', 'autoPause', 'togglePlay', 'toggleMute',
  'toggleLearned', 'toggleNative', 'wordColours', 'peek', 'saveWord', 'drill', 'loopLine', 'loopSection', 'condensed', 'fastGaps',
  'replayThenPause', 'playToNextEnd', 'nextAudio', 'nextUnknown', 'previousUnknown',
]);
const textField = 'input[type="text"], input[type="search"], textarea';

/** Turns key presses into actions, by the learner's own keys. */
export class Keyboard {
  #actions;
  #cardActions;
  #isCardOpen;
  #keymap = new Keymap();
  #arrowsStepLines = false;
  #pressed;
  #released;
  #held = new Map(); // by the key's place: the action that it began

  /**
   * actions, cardActions: functions by name, the latter while isCardOpen(); pressed(action) is called before an action of
   * the former; released(action): the key of an action that lasts as long as its key is held is let go.
   */
  constructor(document, { actions, cardActions, isCardOpen, pressed, released }) {
    this.#actions = actions;
    this.#cardActions = cardActions;
    this.#isCardOpen = isCardOpen;
    this.#pressed = pressed;
    this.#released = released;
    document.addEventListener('keydown', (event) => this.#press(event));
    document.addEventListener('keyup', ({ code }) => this.#release(code));
    document.defaultView.addEventListener('blur', () => { for (const code of [...this.#held.keys()]) this.#release(code); });
  }

  get keymap() {
    return this.#keymap;
  }

  /** keys: the learner's own by action; arrowsStepLines: plain left and right go by lines, not by seconds. */
  set(keys, arrowsStepLines) {
    this.#keymap = new Keymap(keys);
    this.#arrowsStepLines = arrowsStepLines;
  }

  #press(event) {
    if (event.defaultPrevented) return;
    const isCardOpen = this.#isCardOpen();
    const action = this.#actionOf(event, isCardOpen);
    const cardAct = isCardOpen && this.#cardActions[action];
    const act = cardAct || this.#actions[action];
    if (!act || this.#belongsToFocus(event, action)) return;
    event.preventDefault();
    if (event.repeat && onePress.has(action)) return;
    if (!cardAct) this.#pressed(action);
    this.#held.set(event.code, action);
    act();
  }

  // By the key's place: with another modifier it may write something else by now.
  #release(code) {
    const action = this.#held.get(code);
    this.#held.delete(code);
    if (action) this.#released(action);
  }

  #actionOf(event, isCardOpen) {
    const action = this.#keymap.actionOf(event, isCardOpen);
    if (!this.#arrowsStepLines || isCardOpen) return action;
    return { back: 'previousLine', forward: 'nextLine' }[action] ?? action;
  }

  // Space and the arrows keep their meaning in what the keyboard has gone to, letters where they are written.
  #belongsToFocus(event, action) {
    const { target } = event;
    if (!target.matches) return false;
    if (target.matches(textField)) return !event.ctrlKey && !/^F\d/.test(event.key);
    if (action === 'togglePlay' && target.matches('button, summary, input')) return true;
    return target.matches('input[type="range"]') && event.key.startsWith('Arrow');
  }
}
