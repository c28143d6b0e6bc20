// SPDX-License-Identifier: GPL-3.0-or-later

// The player page: brings its parts together and connects them to the player's events.

import { ServiceApi } from '../shared/api.mjs';
import { PlayerBridge, hiddenFrameNavigation } from '../shared/bridge.mjs';
import { Preferences } from '../shared/preferences.mjs';
import { speak, t, translate } from '../shared/texts.mjs';
import { AudioMenu } from './bar/audiomenu.mjs';
import { Controls, speedText } from './bar/controls.mjs';
import { Film } from './film/film.mjs';
import { playDefaults } from './defaults.mjs';
import { Keymap } from './keys/keymap.mjs';
import { Notice, noticeOf, waitingText } from './bar/notice.mjs';
import { PictureClick } from './bar/pictureclick.mjs';
import { PointerRest } from './bar/rest.mjs';
import { SeekBar } from './bar/seekbar.mjs';
import { EndCard } from './end/endcard.mjs';
import { ResumeCard } from './film/resumecard.mjs';
import { SavedVolume } from './film/savedvolume.mjs';
import { ShownLines } from './lines/shownlines.mjs';
import { SidePanels } from './panels/sidepanels.mjs';
import { SubtitlePanel } from './panels/subtitlepanel.mjs';
import { Transcript } from './panels/transcript/transcript.mjs';
import { Subtitles, lineNames } from './lines/subtitles.mjs';
import { Watching } from './film/watching.mjs';
import { TimingKeys } from './lines/timingkeys.mjs';

const { $ } = globalThis;
const now = () => performance.now();
const silenceWatchMs = 300;
const shortNoticeMs = 1500;
const longestWaitForFilmMs = 120_000;

// What a held key must not do again and again.
const onePress = new Set(['subtitlePanel', 'transcript', 'nextSubtitle', 'nextAudio']);

const videoId = new URLSearchParams(location.search).get('videoId');
const api = ServiceApi.ofPage(document);
const bridge = new PlayerBridge(hiddenFrameNavigation(document), $(window));
const element = (id) => document.getElementById(id);
const notice = new Notice(element('notice'));

const preferences = new Preferences(api, playDefaults);
const keymap = new Keymap();
const film = new Film(bridge, now, () => show());
const subtitles = new Subtitles(api, videoId, () => showSubtitles());
const shownLines = new ShownLines(document, film, subtitles, now);
const panels = new SidePanels(document);
const subtitlePanel = new SubtitlePanel(document, panels, subtitles, film);
const transcript = new Transcript(document, panels, subtitles, film, now);
const timingKeys = new TimingKeys(subtitles, film, (text) => notice.say(text));
const volume = new SavedVolume(film, api);
const seekBar = new SeekBar(document, film, preferences);
const resumeCard = new ResumeCard(document, (positionMs) => {
  if (positionMs !== null) film.seekToSecond(positionMs / 1000);
  watching.settled();
});
const watching = new Watching(api, videoId, film, now, {
  show: (positionMs, durationMs) => resumeCard.show(positionMs, durationMs),
  hide: () => resumeCard.hide(),
});
const endCard = new EndCard(document, api, videoId, subtitles);
const audioMenu = new AudioMenu(document, (trackId, name) => {
  film.setAudioTrack(trackId);
  tellIfUnseen(t('notice.sound', { name }));
});

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
  louder: () => changeVolume(1),
  softer: () => changeVolume(-1),
  toggleMute: () => { film.toggleMute(); tellVolume(); },
  slower: () => { film.changeSpeed(-1); tellSpeed(); },
  faster: () => { film.changeSpeed(1); tellSpeed(); },
  normalSpeed: () => { film.setSpeed(1); tellSpeed(); },
  halfSpeed: () => { film.setSpeed(0.5); tellSpeed(); },
  doubleSpeed: () => { film.setSpeed(2); tellSpeed(); },
  nextAudio: () => audioMenu.next(),
  audioMenu: () => audioMenu.toggle(),
  more: () => controls.more.toggle(),
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
};

// What a key does to the place in the film is looked for in the bar; the rest leaves the picture alone.
const showsBar = new Set(['togglePlay', 'back', 'forward', 'backSecond', 'forwardSecond', 'backMinute', 'forwardMinute',
  'audioMenu']);

const controls = new Controls(document, film, actions, keymap, () => audioMenu.close());
const isHeld = () => seekBar.busy || audioMenu.open || controls.more.open || panels.closesByPress
  || document.querySelector('#bar :focus-visible') !== null;
const rest = new PointerRest(document.body, () => film.playing && !film.ended && !isHeld());
const pictureClick = new PictureClick(() => film.togglePlay(), now);

function show() {
  shownLines.update();
  transcript.update();
  volume.update();
  watching.update();
  endCard.update(film.ended);
  showWaiting();
  // Behind a bar that nobody sees nothing needs to be drawn.
  if (isUnseen() && film.playing) return;
  controls.show();
  seekBar.show();
}

const isUnseen = () => document.body.classList.contains('resting');

/** For what the bar would show, were it there. */
function tellIfUnseen(text) {
  if (isUnseen()) notice.say(text, shortNoticeMs);
}

function tellVolume() {
  tellIfUnseen(film.muted ? t('notice.muted') : t('notice.volume', { percent: film.volumePercent }));
}

function changeVolume(direction) {
  film.changeVolume(direction);
  tellVolume();
}

function tellSpeed() {
  tellIfUnseen(t('notice.speed', { speed: speedText(film.speed) }));
}

function showWaiting() {
  const text = film.waiting ? waitingText(film.silenceMs) : '';
  if (element('waiting').textContent !== text) element('waiting').textContent = text;
}

let lastNotice = '';

const countShownLines = () => lineNames.filter((name) => subtitles.line(name)).length;

function showSubtitles() {
  shownLines.load();
  subtitlePanel.show();
  transcript.load();
  seekBar.setTracks(lineNames.filter((name) => subtitles.line(name))
    .map((name) => ({ cues: subtitles.cues(name), tag: subtitles.line(name).languageTag })));
  const text = noticeOf(subtitles, countShownLines());
  if (text && text !== lastNotice) notice.say(text);
  lastNotice = text;
}

async function loadSound() {
  const { audioTrackId } = await watching.load();
  try {
    if (audioMenu.offer(await api.audioTracks(videoId), audioTrackId)) film.restoreAudioTrack(audioTrackId);
    controls.more.fit();
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
    controls.named();
    showSubtitles();
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
  if (showsBar.has(action)) rest.wake();
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
element('picture').addEventListener('pointerdown', () => { pressClosesMenu = audioMenu.open || controls.more.open || panels.closesByPress; }, true);
addEventListener('pagehide', () => {
  subtitles.saveNow();
  preferences.saveNow();
  watching.saveNow();
});
element('picture').addEventListener('click', (event) => {
  if (!event.ctrlKey && !pressClosesMenu) pictureClick.clicked();
});
element('picture').addEventListener('wheel', (event) => changeVolume(event.deltaY < 0 ? 1 : -1));
document.body.addEventListener('pointermove', () => { controls.show(); seekBar.show(); });
// What comes of the player's silence comes without an event.
let wasOver = false;
setInterval(() => {
  if (film.ended !== wasOver) { rest.wake(); show(); }
  wasOver = film.ended;
  showWaiting();
}, silenceWatchMs);

translate(document);
show();
loadLearner();
askPlayer();
subtitles.follow();
loadSound();
volume.load();
