// SPDX-License-Identifier: GPL-3.0-or-later

// Which key means what, and which can be chosen. A combination is written "Ctrl+Alt+Shift+key", in this order and only
// with what is held; the key is what it writes, in lower case, or its name ("arrowleft", "space", "f1"). Where the key
// writes a sign, Shift is part of the sign. Escape is missing on purpose: the player keeps it.

/** Actions by group, each with its default keys; the order is that of the sheet. */
export const actionGroups = [
  ['play', {
    togglePlay: ['space', 'mediaplaypause'],
    back: ['arrowleft'],
    forward: ['arrowright'],
    backSecond: ['Shift+arrowleft'],
    forwardSecond: ['Shift+arrowright'],
    backMinute: ['pagedown'],
    forwardMinute: ['pageup'],
    louder: ['arrowup', '0'],
    softer: ['arrowdown', '9'],
    toggleMute: ['m'],
    slower: ['['],
    faster: [']'],
    normalSpeed: ['backspace'],
    halfSpeed: ['{'],
    doubleSpeed: ['}'],
    nextAudio: ['#'],
    fullScreen: ['f', 'f11'],
  }],
  ['lines', {
    previousLine: ['a', 'Ctrl+arrowleft'],
    nextLine: ['d', 'Ctrl+arrowright'],
    replayLine: ['s'],
    replayThenPause: ['Shift+a'],
    playToNextEnd: ['Shift+d'],
    autoPause: ['q', 'Shift+p'],
    loopLine: ['Shift+r'],
    loopSection: ['l'],
    drill: ['r'],
    condensed: ['Shift+o'],
    fastGaps: ['Shift+f'],
    practicePanel: ['p'],
  }],
  ['words', {
    nextUnknown: ['n'],
    previousUnknown: ['Shift+n'],
    saveWord: ['Ctrl+d', 'e'],
    copyLine: ['Ctrl+c'],
    copyTranslation: ['Ctrl+Shift+c'],
    wordColours: ['k'],
  }],
  ['card', {
    grade0: ['0'],
    grade1: ['1'],
    grade2: ['2'],
    grade3: ['3'],
    grade4: ['4'],
    grade5: ['5'],
    ignoreWord: ['i'],
    speakWord: ['w'],
    speakSlowly: ['Shift+w'],
    nextWord: ['arrowright'],
    previousWord: ['arrowleft'],
    longerPhrase: ['Shift+arrowright'],
    shorterPhrase: ['Shift+arrowleft'],
    closeCard: ['x', 'backspace'],
  }],
  ['subtitles', {
    subtitlePanel: ['t'],
    nextSubtitle: ['j'],
    toggleLearned: ['v', '1'],
    toggleNative: ['Alt+v', '2'],
    peek: ['b'],
    linesEarlier: ['z', 'g'],
    linesLater: ['Shift+z', 'h'],
    linesAsTheyAre: ['c'],
    previousLineIsNow: ['Ctrl+Shift+arrowleft'],
    nextLineIsNow: ['Ctrl+Shift+arrowright'],
    biggerLines: ['Ctrl+='],
    smallerLines: ['Ctrl+-'],
    higherLines: ['Shift+arrowup'],
    lowerLines: ['Shift+arrowdown'],
  }],
  ['panels', {
    transcript: ['Ctrl+b', '`'],
    find: ['Ctrl+f'],
    nextHit: ['f3'],
    previousHit: ['Shift+f3'],
    settings: ['Ctrl+,'],
    keySheet: ['?', 'f1'],
  }],
];

/** Keys of this group hold while a word's card is open, before all others. */
export const cardGroup = 'card';

const isLetter = (text) => /^\p{L}$/u.test(text);
const isSign = (text) => [...text].length === 1 && !isLetter(text) && !/^\d$/.test(text) && text !== ' ';

// What stands on a key of the American keyboard, for keyboards that write no Latin letters or no plain digits there.
function placed(code) {
  if (/^Key[A-Z]$/.test(code)) return code.slice(3).toLowerCase();
  if (/^Digit\d$/.test(code)) return code.slice(5);
  return { BracketLeft: '[', BracketRight: ']' }[code] ?? '';
}

function combination({ ctrlKey, metaKey, altKey, shiftKey }, key) {
  const shift = shiftKey && !isSign(key);
  return `${ctrlKey || metaKey ? 'Ctrl+' : ''}${altKey ? 'Alt+' : ''}${shift ? 'Shift+' : ''}${key}`;
}

/** The combinations that a key press can stand for, the likeliest first; none for a modifier alone. */
export function combinationsOf(event) {
  const { key, code = '' } = event;
  if (['Control', 'Shift', 'Alt', 'AltGraph', 'Meta', 'Escape', 'Dead', 'Process', 'Unidentified'].includes(key)) return [];
  const written = key === ' ' ? 'space' : key.toLowerCase();
  const combinations = [combination(event, written)];
  const place = placed(code);
  const latin = /^[a-z]$/.test(written);
  if (place && place !== written && !latin) combinations.push(combination(event, place));
  return combinations;
}

/** Actions by the keys that the learner has: chosen { action: [combination, ...] } lies over the defaults. */
export class Keymap {
  #actions = new Map(); // 'card' or 'film' -> combination -> action
  #keys = new Map(); // action -> combinations

  constructor(chosen = {}) {
    for (const [group, defaults] of actionGroups) {
      const layer = layerOf(group);
      if (!this.#actions.has(layer)) this.#actions.set(layer, new Map());
      for (const [action, keys] of Object.entries(defaults)) {
        const own = Array.isArray(chosen[action]) ? chosen[action] : keys;
        this.#keys.set(action, own);
        for (const each of own) this.#actions.get(layer).set(each, action);
      }
    }
  }

  /** The action of a key press, or null. isCardOpen: whether the card's keys hold. */
  actionOf(event, isCardOpen = false) {
    for (const each of combinationsOf(event)) {
      const action = (isCardOpen && this.#actions.get('card').get(each)) || this.#actions.get('film').get(each);
      if (action) return action;
    }
    return null;
  }

  keysOf(action) {
    return this.#keys.get(action) ?? [];
  }

  /** Which other action has this key where this one would use it; null when none does. */
  conflict(action, key) {
    const other = this.#actions.get(layerOf(groupOf(action))).get(key);
    return other && other !== action ? other : null;
  }
}

const layerOf = (group) => (group === cardGroup ? 'card' : 'film');

export function groupOf(action) {
  return actionGroups.find(([, actions]) => action in actions)?.[0] ?? null;
}
