// SPDX-License-Identifier: GPL-3.0-or-later

// The home page: shows the learner's language and level, lets the language be changed, and tells the player that it
// is ready.

import { ServiceApi } from '../shared/api.mjs';
import { PlayerBridge, hiddenFrameNavigation } from '../shared/bridge.mjs';
import { watchForFilms } from './filmwatch.mjs';
import { LanguagePicker } from './languagepicker.mjs';
import { LevelMeter } from './levelmeter.mjs';

const { $ } = globalThis;
const api = ServiceApi.ofPage(document);
const bridge = new PlayerBridge(hiddenFrameNavigation(document), $(window));
const trouble = document.getElementById('trouble');
const meter = new LevelMeter(document);
const picker = new LanguagePicker(document, async (code) => {
  try {
    await api.changeSettings({ nativeLanguage: code });
    trouble.textContent = '';
  } catch (error) {
    trouble.textContent = error.message;
  }
});

async function showLearner() {
  try {
    const { nativeLanguage } = await api.settings();
    picker.select(nativeLanguage);
    meter.show(await api.level());
  } catch (error) {
    trouble.textContent = error.message;
  }
}

async function start() {
  try {
    picker.offer(await api.languages());
  } catch (error) {
    trouble.textContent = error.message;
  }
  await showLearner();
  // Not before: the player reads the language from this page as soon as a film comes in.
  await watchForFilms(api, () => bridge.execute('EnableDraggableHomeScreen'));
}

$(window).on('refreshLevel', showLearner);
start();
