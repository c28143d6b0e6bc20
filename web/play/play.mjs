// SPDX-License-Identifier: GPL-3.0-or-later

// The player page: brings its parts together and connects them to the player's events.

import { ServiceApi } from '../shared/api.mjs';
import { takePlace } from '../shared/askedplace.mjs';
import { PlayerBridge, hiddenFrameNavigation } from '../shared/bridge.mjs';
import { copyText } from '../shared/clipboard.mjs';
import { fromLeftToRight } from '../shared/direction.mjs';
import { keyName } from '../shared/keyname.mjs';
import { Preferences } from '../shared/preferences.mjs';
import { t } from '../shared/texts.mjs';
import { AudioMenu } from './bar/audiomenu.mjs';
import { Controls } from './bar/controls.mjs';
import { filmActions } from './bar/filmactions.mjs';
import { Notice, noticeOf, waitingText } from './bar/notice.mjs';
import { PictureClick } from './bar/pictureclick.mjs';
import { onPicturePresses } from './bar/picturepresses.mjs';
import { PointerRest } from './bar/rest.mjs';
import { SeekBar } from './bar/seekbar.mjs';
import { playDefaults } from './defaults.mjs';
import { EndCard } from './end/endcard.mjs';
import { Film } from './film/film.mjs';
import { ResumeCard } from './film/resumecard.mjs';
import { SavedVolume } from './film/savedvolume.mjs';
import { Watching } from './film/watching.mjs';
import { Keyboard } from './keys/keyboard.mjs';
import { LineAnnouncer } from './lines/lineannouncer.mjs';
import { ShownLines } from './lines/shownlines.mjs';
import { Subtitles, lineNames } from './lines/subtitles.mjs';
import { TimingKeys } from './lines/timingkeys.mjs';
import { SidePanels } from './panels/sidepanels.mjs';
import { SubtitlePanel } from './panels/subtitlepanel.mjs';
import { Transcript } from './panels/transcript/transcript.mjs';
import { Practice } from './practice/practice.mjs';
import { InterfaceLanguage } from './settings/interfacelanguage.mjs';
import { KeySheet } from './settings/keysheet.mjs';
import { keptKeys } from './settings/keptkeys.mjs';
import { LinesLook } from './settings/lineslook.mjs';
import { SettingsPanel } from './settings/settingspanel.mjs';
import { FilmWords } from './words/filmwords.mjs';
import { HoverPause } from './words/hoverpause.mjs';
import { WordCard } from './words/wordcard.mjs';
import { WordPicker } from './words/wordpicker.mjs';

const { $ } = globalThis;
const now = () => performance.now();
const silenceWatchMs = 300;
const longestWaitForFilmMs = 120_000;
const element = (id) => document.getElementById(id);

// The film, what is known of it, and what the learner has set.
const videoId = new URLSearchParams(location.search).get('videoId');
const api = ServiceApi.ofPage(document);
const bridge = new PlayerBridge(hiddenFrameNavigation(document), $(window));
const preferences = new Preferences(api, playDefaults);
const language = new InterfaceLanguage(document, api, preferences, () => showTexts());
const notice = new Notice(element('notice'));
const film = new Film(bridge, now, () => show());
const subtitles = new Subtitles(api, videoId, () => showSubtitles());
const volume = new SavedVolume(film, api);
let isFullScreen = false;

// The lines over the picture, and their words.
const shownLines = new ShownLines(document, film, subtitles, now);
const announcer = new LineAnnouncer(element('line-said'), lineNames.map((name) => shownLines.view(name)));
const look = new LinesLook(document, preferences, (name) => {
  const [key] = keyboard.keymap.keysOf(name === 'learned' ? 'toggleLearned' : 'toggleNative');
  notice.say(t('lines.hidden', { line: t(`lines.${name}`), key: fromLeftToRight(keyName(key)) }));
});
const words = new FilmWords(api, videoId, () => showWords());
const hover = new HoverPause(film, lineNames.map((name) => element(name)), () => preferences.get('lines').pausesOnHover);
const card = new WordCard(document, {
  api,
  lines: shownLines,
  words,
  subtitles,
  videoId,
  goTo: goToLine,
  playSound: (url) => bridge.execute('PlayAudio', { audioUrl: encodeURIComponent(url) }),
  tell: (text) => { element('card-said').textContent = text; },
  warn: (text) => notice.say(text),
});
const picker = new WordPicker(film, { lines: shownLines, words, hover, card, say: (key) => notice.say(t(key)) });
card.onClose(() => picker.close());
card.onMark((start, end) => picker.markAlso(start, end));
const timingKeys = new TimingKeys(subtitles, film, (text) => notice.say(text));

// What lies beside the picture.
const panels = new SidePanels(document);
const subtitlePanel = new SubtitlePanel(document, panels, subtitles, film);
const transcript = new Transcript(document, panels, subtitles, film, now);
const keySheet = new KeySheet(document, panels, preferences);
const settingsPanel = new SettingsPanel(document, panels, preferences, () => panels.open('keys'));
const practice = new Practice(document, {
  film,
  preferences,
  panels,
  keyOf: (action) => keyboard.keymap.keysOf(action)[0],
  now,
  say: (text) => notice.say(text),
  isHeld: () => picker.isOpen || document.querySelector('.picker:not([hidden])') !== null,
});

// The bar beneath it.
const seekBar = new SeekBar(document, film, preferences);
const audioMenu = new AudioMenu(document, (trackId, name) => {
  film.setAudioTrack(trackId);
  if (!isBarSeen()) notice.say(t('notice.sound', { name }));
});
const resumeCard = new ResumeCard(document, (positionMs) => {
  if (positionMs !== null) film.seekToSecond(positionMs / 1000);
  watching.settled();
});
const watching = new Watching(api, videoId, film, now, {
  show: (positionMs, durationMs) => resumeCard.show(positionMs, durationMs),
  hide: () => resumeCard.hide(),
  asked: () => takePlace(localStorage, Number(videoId), Date.now()),
}, practice);
const endCard = new EndCard(document, api, videoId, subtitles);
const isBarSeen = () => !document.body.classList.contains('resting');

const actions = {
  ...filmActions(film, notice, isBarSeen),
  previousLine: () => practice.step(-1) || film.stepLine(-1),
  nextLine: () => practice.step(1) || film.stepLine(1),
  replayLine: () => {
    if (practice.step(0)) return;
    film.stepLine(0);
    if (!film.playing) film.setPlaying(true);
  },
  nextAudio: () => audioMenu.next(),
  audioMenu: () => audioMenu.toggle(),
  more: () => controls.more.toggle(),
  subtitlePanel: () => panels.toggle('subtitles'),
  nextSubtitle: () => timingKeys.nextSubtitle(),
  linesEarlier: () => timingKeys.move(-1),
  linesLater: () => timingKeys.move(1),
  linesAsTheyAre: () => timingKeys.reset(),
  previousLineIsNow: () => timingKeys.lineIsNow(0),
  nextLineIsNow: () => timingKeys.lineIsNow(1),
  fullScreen: () => notice.say(t(isFullScreen ? 'bar.fromFullScreen' : 'bar.toFullScreen')),
  saveWord: () => (picker.isOpen ? card.actions.saveWord() : picker.actions.nextUnknown()),
  peek: () => look.peek(true),
  copyLine: () => copy('learned'),
  copyTranslation: () => copy('native'),
  ...practice.actions,
  ...transcript.actions,
  ...look.actions,
  ...keySheet.actions,
  ...settingsPanel.actions,
  ...picker.actions,
};
const keyboard = new Keyboard(document, {
  actions,
  cardActions: { ...card.actions, ...picker.actions },
  isCardOpen: () => picker.isOpen,
  pressed: (action) => act(action),
  released: (action) => { if (action === 'peek') look.peek(false); },
});
const controls = new Controls(document, film, actions, keyboard.keymap, () => audioMenu.close());
const isHeld = () => seekBar.busy || audioMenu.open || controls.more.open || panels.closesByPress
  || document.querySelector('#bar :focus-visible') !== null;
const rest = new PointerRest(document.body, () => film.playing && !film.stands && !isHeld());
const pictureClick = new PictureClick(() => film.togglePlay(), now);

// What a key does to the place in the film is looked for in the bar; the rest leaves the picture alone.
const showsBar = new Set([
  'togglePlay', 'back', 'forward', 'backSecond', 'forwardSecond', 'backMinute', 'forwardMinute', 'audioMenu',
]);
function act(action) {
  if (showsBar.has(action)) rest.wake();
}

/** Where a line of the upper track begins; the track may have been loaded anew since. */
function goToLine(cue) {
  const cues = shownLines.index('learned')?.cues ?? [];
  const text = cue.lines.join('\n');
  const place = cues.findIndex((each) => each.lines.join('\n') === text && Math.abs(each.startMs - cue.startMs) < 60_000);
  picker.leave();
  if (place < 0) return;
  film.goToLine(place);
  film.setPlaying(true);
}

function show() {
  document.body.classList.toggle('paused', !film.playing);
  hover.update();
  picker.update();
  shownLines.update();
  announcer.update(!film.playing);
  transcript.update();
  practice.update();
  volume.update();
  watching.update();
  subtitlePanel.update();
  endCard.update(film.ended);
  showWaiting();
  notice.place();
  // Behind a bar that nobody sees nothing needs to be drawn.
  if (!isBarSeen() && film.playing) return;
  controls.show();
  seekBar.show();
}

function showWaiting() {
  const text = film.waiting ? waitingText(film.silenceMs) : '';
  if (element('waiting').textContent !== text) element('waiting').textContent = text;
}

let lastNotice = '';
let pickedFrom = null; // the subtitle whose words can be picked

let wordsAskedFor = null;

function showSubtitles() {
  const learned = subtitles.line('learned');
  if ((learned?.subtitleId ?? null) !== pickedFrom) picker.close();
  pickedFrom = learned?.subtitleId ?? null;
  shownLines.load();
  const shown = lineNames.filter((name) => subtitles.line(name));
  const isEnglish = Boolean(learned) && ['eng', ''].includes(learned.language);
  shownLines.view('learned').setWords(isEnglish ? (word) => words.classOf(word) : null);
  // There are more when the film has been read, and when the learner has said that it is English.
  const wanted = isEnglish ? [learned.subtitleId, learned.language, subtitles.isReadingFilm].join(' ') : null;
  if (wanted && wanted !== wordsAskedFor) words.loadQuietly();
  wordsAskedFor = wanted;
  const first = shown[0] ?? lineNames[0];
  practice.load(subtitles.cues(first), subtitles.line(first));
  subtitlePanel.show();
  transcript.load();
  seekBar.setTracks(shown.map((name) => ({ cues: subtitles.cues(name), tag: subtitles.line(name).languageTag })));
  const text = noticeOf(subtitles, shown.length);
  if (text && text !== lastNotice) notice.say(text);
  lastNotice = text;
}

function showWords() {
  shownLines.view('learned').colour();
  const isHard = words.subtitleId === null ? null : (cue) => words.isHard(cue);
  transcript.setHard(isHard);
  practice.setHard(isHard ?? (() => false));
}

/** After a change of the interface's language. */
function showTexts() {
  showSubtitles();
  controls.named();
  audioMenu.translate();
  settingsPanel.translate();
  keySheet.show();
  endCard.translate();
  resumeCard.translate();
  show();
}

function showScreen(isFull) {
  isFullScreen = isFull;
  pictureClick.screenChanged();
  controls.fullScreen(isFull);
}

function copy(name) {
  const { text } = shownLines.view(name).text;
  if (text && copyText(document, text)) notice.say(t('words.copied'));
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

async function askPlayer() {
  bridge.request('IsFullscreen').then((on) => {
    isFullScreen = on === true;
    controls.fullScreen(isFullScreen);
  });
  bridge.request('Volume', longestWaitForFilmMs).then(() => volume.playerReady());
  film.durationMs = (await bridge.request('Duration', longestWaitForFilmMs)) || null;
  show();
}

preferences.onChange(() => {
  keyboard.set(keptKeys(preferences.get('keys')), preferences.get('lines').arrowsStepLines);
  controls.named(keyboard.keymap);
});
$(window)
  .on('timeUpdate', (_, positionMs) => film.reported(positionMs))
  .on('nativeApp:enteredFullscreen', () => showScreen(true))
  .on('nativeApp:leftFullscreen', () => showScreen(false));
document.addEventListener('contextmenu', (event) => event.preventDefault());
document.body.addEventListener('pointermove', () => { controls.show(); seekBar.show(); });
onPicturePresses(element('picture'), {
  closesSomething: () => audioMenu.open || controls.more.open || panels.closesByPress || picker.isOpen,
  clicked: (isSpent) => {
    if (picker.isOpen) picker.close();
    else if (!isSpent) pictureClick.clicked();
  },
  wheeled: (step) => actions[step < 0 ? 'louder' : 'softer'](),
});
// The pages have sizes of their own: the engine must not make all of it larger.
addEventListener('wheel', (event) => { if (event.ctrlKey) event.preventDefault(); }, { passive: false });
addEventListener('pagehide', () => {
  subtitles.saveNow();
  subtitlePanel.saveNow();
  preferences.saveNow();
  watching.saveNow();
  volume.saveNow();
});
// What comes of the player's silence comes without an event.
let wasOver = false;
setInterval(() => {
  if (film.stands !== wasOver) { rest.wake(); show(); }
  wasOver = film.stands;
  showWaiting();
}, silenceWatchMs);

show();
language.load();
preferences.load().catch((error) => console.warn(error.message)); // the defaults do
askPlayer();
subtitles.follow();
loadSound();
volume.load();
