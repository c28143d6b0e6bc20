// SPDX-License-Identifier: GPL-3.0-or-later

// The home page: brings its views together, and tells the player that it is ready.

import { ServiceApi } from '../shared/api.mjs';
import { PlayerBridge, hiddenFrameNavigation } from '../shared/bridge.mjs';
import { Preferences, interfaceDefaults } from '../shared/preferences.mjs';
import { languageFor, number, speak, t, translate } from '../shared/texts.mjs';
import { digitOf } from './digit.mjs';
import { DropField } from './films/dropfield.mjs';
import { FilmsView } from './films/filmsview.mjs';
import { watchForFilms } from './filmwatch.mjs';
import { LanguagePicker } from './frame/languagepicker.mjs';
import { LevelMeter } from './frame/levelmeter.mjs';
import { Toast } from './frame/toast.mjs';
import { Views } from './frame/views.mjs';
import { PendingRemoval } from './removal.mjs';
import { ReviewView } from './review/reviewview.mjs';
import { SearchView } from './search/searchview.mjs';
import { Help } from './tour/help.mjs';
import { Tour } from './tour/tour.mjs';
import { ListsPanel } from './words/listspanel.mjs';
import { WordsView } from './words/wordsview.mjs';

const { $ } = globalThis;
const troubleMs = 12_000;
const element = (id) => document.getElementById(id);
const api = ServiceApi.ofPage(document);
const bridge = new PlayerBridge(hiddenFrameNavigation(document), $(window));
const preferences = new Preferences(api, { tour: { seen: false }, interface: interfaceDefaults });
const sayReady = () => bridge.execute('EnableDraggableHomeScreen');

let learner = { nativeLanguage: '', startLevel: '' };
let shownLanguage = '';
let shownInterface = '';
let wantedLanguage = '';
let languages = [];
let dueCount = 0;

const toast = new Toast(document);
const removal = new PendingRemoval();
const tools = {
  toast,
  removal,
  play: (soundUrl) => bridge.execute('PlayAudio', { audioUrl: encodeURIComponent(soundUrl) }),
  say: (text) => { element('said').textContent = text; },
  trouble: showTrouble,
  /** The two-letter code of the learner's language. */
  learnerTag: () => languages.find(({ code }) => code === shownLanguage)?.languageTag ?? '',
};

const films = new FilmsView(document, api, { ...tools, opened: sayReady });
const review = new ReviewView(document, api, { ...tools, counted: showDue });
const search = new SearchView(document, api, tools);
const lists = new ListsPanel(document, api, { imported: () => { words.refresh(); refreshCounts(); } });
const words = new WordsView(document, api, {
  ...tools,
  find: (text) => { search.find(text); views.show('search'); search.focus(); },
  lists: () => lists.open(),
  changed: refreshCounts,
});
const byName = { films, review, words, search };
const views = new Views(document, Object.keys(byName), viewChanged);
const meter = new LevelMeter(document, setStartLevel);
const picker = new LanguagePicker(document, setLanguage);
const tour = new Tour(document, {
  begun: () => { bridge.execute('ResizeForTutorial'); showTitle(); },
  ended: tourEnded,
  chooseLanguage: () => picker.open(),
  startLevel: () => learner.startLevel,
  setStartLevel,
});
const help = new Help(document, () => tour.begin());
new DropField(document);

let troubleTimer = null;

/** With null what showed goes. */
function showTrouble(error) {
  clearTimeout(troubleTimer);
  element('trouble').textContent = error?.message ?? '';
  troubleTimer = setTimeout(() => { element('trouble').textContent = ''; }, troubleMs);
}

function showTitle() {
  element('view-title').textContent = t(tour.isOpen ? 'tour.title' : `home.${views.current}`);
}

function viewChanged(name) {
  tour.end();
  showTitle();
  byName[name].shown?.();
}

function tourEnded() {
  preferences.change('tour', { seen: true });
  showTitle();
  views.focusTab();
}

function showDue(count) {
  dueCount = count;
  films.showDue(count);
  element('due-count').hidden = count === 0;
  element('due-count').textContent = number(count);
  element('due-said').textContent = count > 0 ? `${number(count)} ${t('films.wordsDue', { count })}` : '';
}

async function attempt(work) {
  try {
    await work();
    tools.trouble(null);
  } catch (error) {
    tools.trouble(error);
  }
}

async function setLanguage(code) {
  wantedLanguage = code;
  preferences.change('interface', { follows: true, language: '' });
  await attempt(() => api.changeSettings({ nativeLanguage: code }));
  // With arrow keys one comes by many: what shows is not set back to an earlier one.
  if (wantedLanguage === code) await attempt(refreshLearner);
}

function setStartLevel(startLevel) {
  return attempt(async () => {
    await api.changeSettings({ startLevel });
    await refreshLearner();
  });
}

async function refreshLearner() {
  [learner] = await Promise.all([api.settings(), preferences.load()]);
  const spoken = languageFor(preferences.get('interface'), learner.nativeLanguage, navigator.language);
  if (shownLanguage !== learner.nativeLanguage || shownInterface !== spoken) await showLanguage(learner.nativeLanguage, spoken);
  meter.show(await api.level(), learner.startLevel);
  tour.render();
}

async function showLanguage(code, spoken) {
  await speak(spoken);
  shownInterface = spoken;
  shownLanguage = code;
  translate(document);
  picker.select(code);
  search.offer(languages.filter((language) => language.code === code));
  review.forgetMeanings();
  renderAll();
}

/** What the interface says, in its language of this moment. */
function renderAll() {
  picker.render();
  showTitle();
  showDue(dueCount);
  for (const view of Object.values(byName)) view.render();
  tour.render();
}

function refreshCounts() {
  return attempt(async () => {
    await Promise.all([review.refresh(), api.level().then((level) => meter.show(level, learner.startLevel))]);
  });
}

/** Everything anew, while the learner stays where they are. */
function refreshAll() {
  return Promise.all([attempt(refreshLearner), films.refresh(), review.refresh(), words.refresh(), search.refresh()]);
}

/** Keys of the whole page; those of a field, a list or an open sheet are theirs. */
function keyPressed(event) {
  const { key, altKey, ctrlKey, metaKey, target } = event;
  const name = views.names[digitOf(event) - 1];
  if (ctrlKey || metaKey || document.querySelector('dialog[open]')) {
    if (key === 'F1' || (key === '?' && element('help').open)) help.toggle();
    return;
  }
  if (altKey) {
    if (name) toView(name);
    return;
  }
  const isTyped = target.matches('input:not([type="checkbox"]), select, textarea') || target.closest('.popover');
  if (isTyped) return;
  if (event.repeat) return; // a held key turns no cards
  // The tab of the view that shows already has nothing to do.
  const isPress = (key === ' ' || key === 'Enter') && target.matches('button:not([aria-selected="true"]), a');
  if (isPress) return;
  if (views.current === 'review' && !tour.isOpen && review.key(event)) event.preventDefault();
  else if (key === '?' || key === 'F1') help.toggle();
  else if (key === '/') toView('search', event);
  else if (key.toLowerCase() === 'u') toast.undo();
  else if (name) toView(name, event);
}

function toView(name, event) {
  event?.preventDefault();
  tour.end();
  views.show(name);
  if (event?.key === '/') search.focus();
  else if (name !== 'review' || !review.focus()) views.focusTab();
}

async function start() {
  await attempt(async () => {
    languages = await api.languages();
    picker.offer(languages);
  });
  await attempt(refreshLearner);
  // A film that waits is what the learner has come for: the tour can wait.
  const waiting = await api.pendingFilms().catch(() => 0);
  if (!preferences.get('tour').seen && waiting === 0) tour.begin();
  films.refresh();
  review.refresh();
  words.refresh();
  // Not before: the player reads the language from this page as soon as a film comes in.
  await watchForFilms(api, sayReady);
}

$(window).on('refreshLevel', refreshAll);
document.addEventListener('keydown', keyPressed);
element('due').addEventListener('click', () => toView('review'));
addEventListener('pagehide', () => {
  removal.carryOut();
  preferences.saveNow();
});
translate(document);
showTitle();
start();
