// SPDX-License-Identifier: GPL-3.0-or-later

// The player page: brings its parts together and connects them to the player's events.

import { ServiceApi } from '../shared/api.mjs';
import { copyText } from '../shared/clipboard.mjs';
import { PlayerBridge, hiddenFrameNavigation } from '../shared/bridge.mjs';
import { Preferences } from '../shared/preferences.mjs';
import { interfaceLanguages, speak, t, translate } from '../shared/texts.mjs';
import { AudioMenu } from './bar/audiomenu.mjs';
import { Controls } from './bar/controls.mjs';
import { Film } from './film/film.mjs';
import { playDefaults } from './defaults.mjs';
import { Keyboard } from './keys/keyboard.mjs';
import { noticeOf, waitingText } from './bar/notice.mjs';
import { PictureClick } from './bar/pictureclick.mjs';
import { PointerRest } from './bar/rest.mjs';
import { SavedVolume } from './film/savedvolume.mjs';
import { LineAnnouncer } from './lines/lineannouncer.mjs';
import { ShownLines } from './lines/shownlines.mjs';
import { SidePanels } from './panels/sidepanels.mjs';
import { SubtitlePanel } from './panels/subtitlepanel.mjs';
import { Transcript } from './panels/transcript/transcript.mjs';
import { Subtitles, lineNames } from './lines/subtitles.mjs';
import { TimingKeys } from './lines/timingkeys.mjs';
import { KeySheet } from './settings/keysheet.mjs';
import { LinesLook } from './settings/lineslook.mjs';
import { SettingsPanel } from './settings/settingspanel.mjs';
import { FilmWords } from './words/filmwords.mjs';
import { HoverPause } from './words/hoverpause.mjs';
import { WordCard } from './words/wordcard.mjs';
import { WordPicker } from './words/wordpicker.mjs';

const { $ } = globalThis;
const now = () => performance.now();
const silenceWatchMs = 300;
// Long enough to be read.
const noticeMs = (text) => 1800 + 70 * text.length;
const longestWaitForFilmMs = 120_000;

const videoId = new URLSearchParams(location.search).get('videoId');
const api = ServiceApi.ofPage(document);
const bridge = new PlayerBridge(hiddenFrameNavigation(document), $(window));
const element = (id) => document.getElementById(id);

let isFullScreen = false;
let learnerLanguage = '';
let interfaceLanguage = ''; // the learner's own choice; empty: as the learner's language
const preferences = new Preferences(api, playDefaults);
const film = new Film(bridge, now, () => show());
const subtitles = new Subtitles(api, videoId, () => showSubtitles());
const shownLines = new ShownLines(document, film, subtitles, now);
const announcer = new LineAnnouncer(element('line-said'), lineNames.map((name) => shownLines.view(name)));
const panels = new SidePanels(document);
const subtitlePanel = new SubtitlePanel(document, panels, subtitles, film);
const look = new LinesLook(document, preferences);
const keySheet = new KeySheet(document, panels, preferences);
const settingsPanel = new SettingsPanel(document, panels, preferences, () => panels.open('keys'));
const words = new FilmWords(api, videoId, () => showWords());
const card = new WordCard(document, {
  api, lines: shownLines, words, subtitles, videoId,
  goTo: (cue) => {
    picker.leave();
    film.goToLine(shownLines.index('learned').cues.indexOf(cue));
    film.setPlaying(true);
  },
  playSound: (url) => bridge.execute('PlayAudio', { audioUrl: encodeURIComponent(url) }),
});
const hover = new HoverPause(film, lineNames.map((name) => element(name)), () => preferences.get('lines').pausesOnHover);
const picker = new WordPicker(film, { lines: shownLines, words, hover, card, say: (key) => say(t(key)) });
card.onClose(() => picker.close());
const transcript = new Transcript(document, panels, subtitles, film, now);
const timingKeys = new TimingKeys(subtitles, film, say);
const volume = new SavedVolume(film, api);
const audioMenu = new AudioMenu(document, (trackId) => film.setAudioTrack(trackId));

const actions = {
  togglePlay: () => film.togglePlay(),
  previousLine: () => film.stepLine(-1),
  nextLine: () => film.stepLine(1),
  replayLine: () => { film.stepLine(0); if (!film.playing) film.setPlaying(true); },
  back: () => film.seekBy(-5),
  forward: () => film.seekBy(5),
  backSecond: () => film.seekBy(-1),
  forwardSecond: () => film.seekBy(1),
  backMinute: () => film.seekBy(-60),
  forwardMinute: () => film.seekBy(60),
  louder: () => film.changeVolume(1),
  softer: () => film.changeVolume(-1),
  toggleMute: () => film.toggleMute(),
  slower: () => film.changeSpeed(-1),
  faster: () => film.changeSpeed(1),
  normalSpeed: () => film.setSpeed(1),
  halfSpeed: () => film.setSpeed(0.5),
  doubleSpeed: () => film.setSpeed(2),
  audioMenu: () => audioMenu.toggle(),
  subtitlePanel: () => panels.toggle('subtitles'),
  ...transcript.actions,
  nextSubtitle: () => timingKeys.nextSubtitle(),
  linesEarlier: () => timingKeys.move(-1),
  linesLater: () => timingKeys.move(1),
  linesAsTheyAre: () => timingKeys.reset(),
  previousLineIsNow: () => timingKeys.lineIsNow(0),
  nextLineIsNow: () => timingKeys.lineIsNow(1),
  playAgain: () => film.playAgain(),
  home: () => film.home(),
  fullScreen: () => say(t(isFullScreen ? 'bar.fromFullScreen' : 'bar.toFullScreen')),
  saveWord: () => (picker.isOpen ? card.actions.saveWord() : picker.actions.nextUnknown()),
  peek: () => look.peek(true),
  copyLine: () => copy('learned'),
  copyTranslation: () => copy('native'),
  ...look.actions,
  ...keySheet.actions,
  ...settingsPanel.actions,
  ...picker.actions,
};
const keyboard = new Keyboard(document, {
  actions,
  cardActions: { ...card.actions, ...picker.actions },
  isCardOpen: () => picker.isOpen,
  released: (action) => { if (action === 'peek') look.peek(false); },
});
preferences.onChange(() => {
  keyboard.set(preferences.get('keys'), preferences.get('lines').arrowsStepLines);
  if (preferences.get('interface').language !== interfaceLanguage) speakAsChosen();
});

const controls = new Controls(document, film, actions);
const rest = new PointerRest(document.body, () => film.playing && !film.ended && !controls.busy && !audioMenu.open && !panels.closesByPress);
const pictureClick = new PictureClick(() => film.togglePlay(), now);

function show() {
  document.body.classList.toggle('paused', !film.playing);
  picker.update();
  shownLines.update();
  announcer.update(!film.playing);
  transcript.update();
  volume.update();
  element('end').hidden = !film.ended;
  showWaiting();
  // Behind a bar that nobody sees nothing needs to be drawn.
  if (!document.body.classList.contains('resting') || !film.playing) controls.show();
}

function showWaiting() {
  const text = film.waiting ? waitingText(film.silenceMs) : '';
  if (element('waiting').textContent !== text) element('waiting').textContent = text;
}

let noticeTimer = null;
let lastNotice = '';

/** A short word over the picture. */
function say(text) {
  clearTimeout(noticeTimer);
  element('notice').textContent = text;
  noticeTimer = setTimeout(() => { element('notice').textContent = ''; }, noticeMs(text));
}

const countShownLines = () => lineNames.filter((name) => subtitles.line(name)).length;

function showSubtitles() {
  shownLines.load();
  const learned = subtitles.line('learned');
  const isEnglish = learned && ['eng', ''].includes(learned.language);
  shownLines.view('learned').setWords(isEnglish ? (word) => words.classOf(word) : null);
  if (learned && learned.subtitleId !== words.subtitleId) loadWords();
  subtitlePanel.show();
  transcript.load();
  const notice = noticeOf(subtitles, countShownLines());
  if (notice && notice !== lastNotice) say(notice);
  lastNotice = notice;
}

async function loadAudioTracks() {
  try {
    audioMenu.offer(await api.audioTracks(videoId));
  } catch (error) {
    console.warn(error.message); // without the menu, the film's own choice plays
  }
}

async function loadLearner() {
  // Without the one or the other the defaults do.
  preferences.load().catch((error) => console.warn(error.message));
  try {
    learnerLanguage = (await api.settings()).nativeLanguage;
    await speakAsChosen();
  } catch (error) {
    console.warn(error.message);
  }
}

async function speakAsChosen() {
  interfaceLanguage = preferences.get('interface').language;
  await speak(interfaceLanguage || learnerLanguage);
  translate(document);
  settingsPanel.translate();
  show();
}

async function loadWords() {
  try {
    await words.load();
  } catch (error) {
    console.warn(error.message); // words answer all the same, only without colours
  }
}

function showWords() {
  shownLines.view('learned').colour();
  transcript.setHard(words.subtitleId === null ? null : (cue) => words.isHard(cue));
}

function showScreen(isFull) {
  isFullScreen = isFull;
  pictureClick.screenChanged();
  controls.fullScreen(isFull);
}

function copy(name) {
  const { text } = shownLines.view(name).text;
  if (text && copyText(document, text)) say(t('words.copied'));
}

async function askPlayer() {
  bridge.request('IsFullscreen').then((on) => {
    isFullScreen = on === true;
    controls.fullScreen(isFullScreen);
  });
  bridge.request('Volume', longestWaitForFilmMs).then(() => volume.playerReady());
  film.durationMs = (await bridge.request('Duration', longestWaitForFilmMs)) || null;
  show();
}

$(window)
  .on('timeUpdate', (_, positionMs) => film.reported(positionMs))
  .on('nativeApp:enteredFullscreen', () => showScreen(true))
  .on('nativeApp:leftFullscreen', () => showScreen(false));
document.addEventListener('contextmenu', (event) => event.preventDefault());
let pressClosesMenu = false;
// Before the menus close, for which they look at the same press.
element('picture').addEventListener('pointerdown', () => { pressClosesMenu = audioMenu.open || panels.closesByPress; }, true);
addEventListener('pagehide', () => {
  subtitles.saveNow();
  preferences.saveNow();
});
element('picture').addEventListener('click', (event) => {
  if (!event.ctrlKey && !pressClosesMenu) pictureClick.clicked();
});
element('picture').addEventListener('wheel', (event) => film.changeVolume(event.deltaY < 0 ? 1 : -1));
document.body.addEventListener('pointermove', () => controls.show());
// What comes of the player's silence comes without an event.
setInterval(() => {
  if (film.ended !== !element('end').hidden) { rest.wake(); show(); }
  showWaiting();
}, silenceWatchMs);

translate(document);
show();
loadLearner();
askPlayer();
subtitles.follow();
loadAudioTracks();
volume.load();
