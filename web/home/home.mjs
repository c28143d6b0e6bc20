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
import { Trouble } from './frame/trouble.mjs';
import { Views } from './frame/views.mjs';
import { LastWish } from './lastwish.mjs';
import { ListsPanel } from './lists/listspanel.mjs';
import { PendingRemoval } from './removal.mjs';
import { ReviewView } from './review/reviewview.mjs';
import { SearchView } from './search/searchview.mjs';
import { Help } from './tour/help.mjs';
import { Tour } from './tour/tour.mjs';
import { WordsView } from './words/wordsview.mjs';

const { $ } = globalThis;
const element = (id) => document.getElementById(id);
const api = ServiceApi.ofPage(document);
const bridge = new PlayerBridge(hiddenFrameNavigation(document), $(window));
const preferences = new Preferences(api, { tour: { seen: false }, interface: interfaceDefaults });
const toTellNext = 'toTellNext'; // in the session: the key of a text for the page that comes after a reload
const sayReady = () => bridge.execute('EnableDraggableHomeScreen');

let learner = { nativeLanguage: '', startLevel: '' };
let shownLanguage = '';
let shownInterface = '';
let languages = [];
let dueCount = 0;
let hasPreferences = false;
let refreshCount = 0;

const removal = new PendingRemoval();
const toast = new Toast(document, { hold: (isHeld) => removal.hold(isHeld), leave: () => views.focusTab() });
const trouble = new Trouble(element('trouble'));
const languageWish = new LastWish((code) => api.changeSettings({ nativeLanguage: code }));
const levelWish = new LastWish((startLevel) => api.changeSettings({ startLevel }));
const tools = {
  toast,
  removal,
  play: (soundUrl) => bridge.execute('PlayAudio', { audioUrl: encodeURIComponent(soundUrl) }),
  say: (text) => { element('said').textContent = text; },
  /** source: what error is of; with null it has come right. */
  trouble: (error, source = 'step') => trouble.tell(source, error),
  /** The two-letter code of the learner's language. */
  learnerTag: () => languages.find(({ code }) => code === shownLanguage)?.languageTag ?? '',
};

const films = new FilmsView(document, api, { ...tools, opened: sayReady });
const review = new ReviewView(document, api, { ...tools, counted: showDue });
const search = new SearchView(document, api, {
  ...tools, watch: (videoId, startMs) => films.open(videoId, startMs),
});
const lists = new ListsPanel(document, api, {
  imported: () => { words.refresh(); refreshCounts(); },
  // What still waits is of the words and films that are here now.
  beforeBringing: async () => {
    await Promise.all([removal.carryOut(), preferences.saveNow()]);
    await api.settled();
  },
  broughtBack: () => {
    sessionStorage.setItem(toTellNext, 'lists.learnerDone');
    location.reload();
  },
});
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
  chooseLanguage: (button) => picker.toggle(button),
  startLevel: () => learner.startLevel,
  setStartLevel,
});
const help = new Help(document, () => tour.begin());
new DropField(document);

function showTitle() {
  element('view-title').textContent = t(tour.isOpen ? 'tour.title' : `home.${views.current}`);
}

function viewChanged(name) {
  tour.end();
  showTitle();
  byName[name].shown?.();
}

function tourEnded() {
  // What could not be read is not written over either.
  if (hasPreferences) preferences.change('tour', { seen: true });
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

async function attempt(source, work) {
  try {
    await work();
    trouble.tell(source, null);
  } catch (error) {
    trouble.tell(source, error);
  }
}

function setLanguage(code) {
  return attempt('language', async () => {
    try {
      if (!await languageWish.want(code)) return; // another one was chosen meanwhile
    } catch (error) {
      // The player reads the language there.
      if (shownLanguage) picker.select(shownLanguage);
      throw error;
    }
    preferences.change('interface', { follows: true, language: '' });
    await refreshLearner();
  });
}

function setStartLevel(startLevel) {
  return attempt('level', async () => {
    try {
      if (!await levelWish.want(startLevel)) return;
    } catch (error) {
      meter.render(); // as it was
      tour.render();
      throw error;
    }
    await refreshLearner();
  });
}

/** What a wish is about that is under way is left alone: it asks again by itself. */
async function refreshLearner() {
  refreshCount += 1;
  const mine = refreshCount;
  const read = attempt('preferences', async () => {
    await preferences.load();
    hasPreferences = true;
  });
  const [reply] = await Promise.all([api.settings(), read, attempt('languages', offerLanguages)]);
  if (mine !== refreshCount) return;
  if (!languageWish.isUnderWay) await showLearnersLanguage(reply.nativeLanguage, () => mine !== refreshCount);
  if (mine !== refreshCount) return;
  if (!levelWish.isUnderWay) learner = reply;
  tour.render();
  const level = await api.level();
  if (mine !== refreshCount || levelWish.isUnderWay) return;
  meter.show(level, learner.startLevel);
}

async function showLearnersLanguage(code, isLate) {
  const spoken = languageFor(preferences.get('interface'), code, navigator.language);
  if (shownLanguage === code && shownInterface === spoken) return;
  await speak(spoken);
  if (!isLate() && !languageWish.isUnderWay) showLanguage(code, spoken);
}

async function offerLanguages() {
  if (languages.length > 0) return;
  languages = await api.languages();
  picker.offer(languages);
  shownInterface = ''; // the chosen one's name is known only now
}

function showLanguage(code, spoken) {
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
  meter.render();
  showTitle();
  showDue(dueCount);
  for (const view of Object.values(byName)) view.render();
  tour.render();
}

function refreshCounts() {
  return attempt('counts', async () => {
    await Promise.all([review.refresh(), api.level().then((level) => meter.show(level, learner.startLevel))]);
  });
}

/** Everything anew, while the learner stays where they are. */
function refreshAll() {
  films.endOpening();
  const views = [films.refresh(), review.refresh(), words.refresh(), search.refresh()];
  return Promise.all([attempt('learner', refreshLearner).then(offerTour), ...views]);
}

/** Once, to a learner of whom it is known that they have not seen it, and who has gone nowhere else meanwhile. */
function offerTour() {
  const isNew = hasPreferences && !preferences.get('tour').seen;
  if (isNew && !tour.isOpen && views.current === 'films') tour.begin();
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

// What the page before this one has done.
function tellWhatWasDone() {
  const key = sessionStorage.getItem(toTellNext);
  sessionStorage.removeItem(toTellNext);
  if (key) toast.tell(t(key));
}

async function start() {
  await attempt('learner', refreshLearner);
  tellWhatWasDone();
  // A film that waits is what the learner has come for: the tour can wait until they come back from it.
  if (await api.pendingFilms().catch(() => 0) === 0) offerTour();
  films.refresh();
  review.refresh();
  words.refresh();
  // Not before: the player reads the language from this page as soon as a film comes in.
  await watchForFilms(api, sayReady);
}

$(window).on('refreshLevel', refreshAll);
document.addEventListener('keydown', keyPressed);
// Whoever clicks there is about to type; by keys one may go on to another view.
element('tab-search').addEventListener('click', ({ detail }) => { if (detail > 0) search.focus(); });
element('due').addEventListener('click', () => toView('review'));
element('selectedLanguage').addEventListener('click', () => {
  if (languages.length === 0) attempt('learner', refreshLearner);
});
for (const [target, name] of [[window, 'pagehide'], [document, 'visibilitychange']]) {
  target.addEventListener(name, () => {
    if (name === 'visibilitychange' && !document.hidden) return;
    removal.carryOut();
    preferences.saveNow();
  });
}
translate(document);
showTitle();
start();
