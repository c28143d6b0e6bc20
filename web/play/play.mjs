// SPDX-License-Identifier: GPL-3.0-or-later

// The player page: brings its parts together and connects them to the player's events.

import { ServiceApi } from '../shared/api.mjs';
import { PlayerBridge, hiddenFrameNavigation } from '../shared/bridge.mjs';
import { Preferences } from '../shared/preferences.mjs';
import { speak, translate } from '../shared/texts.mjs';
import { AudioMenu } from './bar/audiomenu.mjs';
import { Controls } from './bar/controls.mjs';
import { Film } from './film/film.mjs';
import { playDefaults } from './defaults.mjs';
import { Keymap } from './keys/keymap.mjs';
import { noticeOf, waitingText } from './bar/notice.mjs';
import { PictureClick } from './bar/pictureclick.mjs';
import { Practice } from './practice/practice.mjs';
import { PointerRest } from './bar/rest.mjs';
import { SavedVolume } from './film/savedvolume.mjs';
import { ShownLines } from './lines/shownlines.mjs';
import { SubtitlePanel } from './panels/subtitlepanel.mjs';
import { Subtitles, lineNames } from './lines/subtitles.mjs';
import { TimingKeys } from './lines/timingkeys.mjs';

const { $ } = globalThis;
const now = () => performance.now();
const silenceWatchMs = 300;
const noticeMs = 9000;
const longestWaitForFilmMs = 120_000;

// What a held key must not do again and again.
const onePress = new Set([
  'subtitlePanel', 'nextSubtitle', 'practicePanel', 'autoPause', 'condensed', 'fastGaps', 'loopLine', 'loopSection',
  'drill', 'replayThenPause', 'playToNextEnd',
]);

const videoId = new URLSearchParams(location.search).get('videoId');
const api = ServiceApi.ofPage(document);
const bridge = new PlayerBridge(hiddenFrameNavigation(document), $(window));
const element = (id) => document.getElementById(id);

const preferences = new Preferences(api, playDefaults);
const keymap = new Keymap();
const film = new Film(bridge, now, () => show());
const subtitles = new Subtitles(api, videoId, () => showSubtitles());
const shownLines = new ShownLines(document, film, subtitles, now);
const panel = new SubtitlePanel(document, subtitles, film);
const timingKeys = new TimingKeys(subtitles, film, say);
const practice = new Practice(document, film, preferences, keymap, now, say);
const volume = new SavedVolume(film, api);
const audioMenu = new AudioMenu(document, (trackId) => film.setAudioTrack(trackId));

const actions = {
  togglePlay: () => film.togglePlay(),
  previousLine: () => practice.step(-1) || film.stepLine(-1),
  nextLine: () => practice.step(1) || film.stepLine(1),
  replayLine: () => {
    if (practice.step(0)) return;
    film.stepLine(0);
    if (!film.playing) film.setPlaying(true);
  },
  ...practice.actions,
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
  subtitlePanel: () => panel.toggle(),
  nextSubtitle: () => timingKeys.nextSubtitle(),
  linesEarlier: () => timingKeys.move(-1),
  linesLater: () => timingKeys.move(1),
  linesAsTheyAre: () => timingKeys.reset(),
  previousLineIsNow: () => timingKeys.lineIsNow(0),
  nextLineIsNow: () => timingKeys.lineIsNow(1),
  playAgain: () => film.playAgain(),
  home: () => film.home(),
};

const controls = new Controls(document, film, actions);
const isPanelOpen = () => panel.open || practice.open;
const rest = new PointerRest(document.body,
  () => film.playing && !film.ended && !controls.busy && !audioMenu.open && !isPanelOpen());
const pictureClick = new PictureClick(() => film.togglePlay(), now);

function show() {
  shownLines.update();
  practice.update();
  volume.update();
  document.body.classList.toggle('plays', film.playing);
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
  noticeTimer = setTimeout(() => { element('notice').textContent = ''; }, noticeMs);
}

const countShownLines = () => lineNames.filter((name) => subtitles.line(name)).length;

function showSubtitles() {
  shownLines.load();
  const first = lineNames.find((name) => subtitles.line(name)) ?? lineNames[0];
  practice.load(subtitles.cues(first), subtitles.line(first));
  panel.show();
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
    await speak((await api.settings()).nativeLanguage);
    translate(document);
    show();
  } catch (error) {
    console.warn(error.message);
  }
}

async function askPlayer() {
  bridge.request('IsFullscreen').then((on) => controls.fullScreen(on === true));
  bridge.request('Volume', longestWaitForFilmMs).then(() => volume.playerReady());
  film.durationMs = (await bridge.request('Duration', longestWaitForFilmMs)) || null;
  show();
}

function keyPressed(event) {
  const action = keymap.actionOf(event);
  if (!actions[action]) return;
  // Space and the arrows keep their meaning in what the keyboard has gone to.
  const focused = document.activeElement;
  if (action === 'togglePlay' && focused?.matches('button')) return;
  if (event.repeat && onePress.has(action)) return;
  if (focused?.matches('input[type="range"]') && event.key.startsWith('Arrow')) return;
  event.preventDefault();
  actions[action]();
}

$(window)
  .on('timeUpdate', (_, positionMs) => film.reported(positionMs))
  .on('nativeApp:enteredFullscreen', () => { pictureClick.screenChanged(); controls.fullScreen(true); })
  .on('nativeApp:leftFullscreen', () => { pictureClick.screenChanged(); controls.fullScreen(false); });
document.addEventListener('keydown', keyPressed);
document.addEventListener('contextmenu', (event) => event.preventDefault());
let pressClosesMenu = false;
// Before the menus close, for which they look at the same press.
element('picture').addEventListener('pointerdown', () => { pressClosesMenu = audioMenu.open || isPanelOpen(); }, true);
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
