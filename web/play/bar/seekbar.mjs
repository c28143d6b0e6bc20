// SPDX-License-Identifier: GPL-3.0-or-later

import { t } from '../../shared/texts.mjs';
import { timeText } from '../../shared/timetext.mjs';
import { CueIndex } from '../lines/cueindex.mjs';
import { drawSpeech } from './speechmap.mjs';

const stepsPerSecond = 4;
const thumbPx = 14; // as in controls.css: the thumb's middle goes from half of it to half of it before the end
const aheadColour = [160, 164, 171];
const playedColour = [255, 213, 138]; // --warm
const keySteps = { ArrowLeft: -5, ArrowDown: -5, ArrowRight: 5, ArrowUp: 5, PageDown: -60, PageUp: 60 };

/** The place in the film: shows it, with where there is speech, and moves it; tells what is said under the pointer. */
export class SeekBar {
  #film;
  #preferences;
  #seek;
  #line;
  #elapsed;
  #total;
  #preview;
  #seeking = false;
  #tracks = []; // { cues, index, tag } of the lines that are shown, the upper one first
  #mapped = '';

  /** preferences: keeps whether the time that is left is shown. */
  constructor(document, film, preferences) {
    this.#film = film;
    this.#preferences = preferences;
    this.#seek = document.getElementById('seek');
    this.#line = document.getElementById('seek-line');
    this.#elapsed = document.getElementById('elapsed');
    this.#total = document.getElementById('total');
    this.#preview = document.getElementById('seek-preview');
    this.#wire();
    new document.defaultView.ResizeObserver(() => this.#map()).observe(this.#line);
  }

  /** The bar is held: it must not fade now. */
  get busy() {
    return this.#seeking;
  }

  /** tracks: [{ cues, tag }], the cues in the film's time, tag: of their language. */
  setTracks(tracks) {
    this.#tracks = tracks.map(({ cues, tag }) => ({ cues, tag, index: new CueIndex(cues) }));
    this.#mapped = '';
    this.#map();
  }

  show() {
    const { positionMs, durationMs } = this.#film;
    this.#seek.disabled = durationMs === null;
    if (durationMs !== null) this.#seek.max = Math.floor((durationMs / 1000) * stepsPerSecond);
    this.#map();
    if (this.#seeking) return;
    // A film can run on a little longer than it says it lasts.
    const shownMs = Math.min(positionMs ?? 0, durationMs ?? Infinity);
    this.#seek.value = Math.round((shownMs / 1000) * stepsPerSecond);
    this.#showPlace(shownMs);
  }

  #showPlace(positionMs) {
    put(this.#elapsed, timeText(positionMs));
    this.#seek.setAttribute('aria-valuetext', timeText(positionMs));
    const share = Number(this.#seek.max) > 0 ? Number(this.#seek.value) / Number(this.#seek.max) : 0;
    this.#line.style.setProperty('--filled', `${(share * 100).toFixed(2)}%`);
    const { durationMs } = this.#film;
    if (durationMs === null) return;
    const isLeft = this.#preferences.get('bar').showsRemaining;
    const text = timeText(isLeft ? durationMs - positionMs : durationMs);
    put(this.#total, isLeft ? `−${text}` : text);
    const label = t(isLeft ? 'bar.remaining' : 'bar.total', { time: text });
    if (this.#total.getAttribute('aria-label') !== label) this.#total.setAttribute('aria-label', label);
  }

  // Drawn anew only when the lines, the film's length or the width have changed.
  #map() {
    const width = this.#line.clientWidth;
    const { durationMs } = this.#film;
    const cues = this.#tracks[0]?.cues ?? [];
    const wanted = `${width} ${durationMs} ${cues.length}`;
    if (width === 0 || durationMs === null || wanted === this.#mapped) return;
    this.#mapped = wanted;
    const columns = Math.min(4000, Math.round(width * this.#line.ownerDocument.defaultView.devicePixelRatio));
    const [ahead, played] = this.#line.children;
    drawSpeech(ahead, cues, durationMs, columns, aheadColour);
    drawSpeech(played, cues, durationMs, columns, playedColour);
  }

  #wire() {
    const seek = this.#seek;
    const chosen = () => Number(seek.value) / stepsPerSecond;
    seek.addEventListener('input', () => {
      this.#seeking = true;
      this.#showPlace(chosen() * 1000);
      if (!this.#preview.hidden) this.#tell(Number(seek.value) / Number(seek.max));
    });
    seek.addEventListener('change', () => {
      this.#seeking = false;
      this.#film.seekToSecond(chosen());
    });
    // A touch that is taken away, or a window that loses the keyboard, ends the choice without a change.
    // Where a change follows, it does so before the timer.
    for (const name of ['pointercancel', 'blur']) seek.addEventListener(name, () => setTimeout(() => this.#settle(chosen())));
    seek.addEventListener('pointerup', () => seek.blur());
    seek.addEventListener('keydown', (event) => this.#keyPressed(event));
    const look = (event) => {
      const { left, width } = seek.getBoundingClientRect();
      this.#tell(Math.min(1, Math.max(0, (event.clientX - left - thumbPx / 2) / (width - thumbPx))));
    };
    // The first move over a bar that was not seen brings it back, and is none over what is in it yet.
    for (const name of ['pointerenter', 'pointermove']) seek.addEventListener(name, look);
    seek.addEventListener('pointerleave', () => { this.#preview.hidden = true; });
    this.#total.addEventListener('click', () => {
      this.#preferences.change('bar', { showsRemaining: !this.#preferences.get('bar').showsRemaining });
      this.show();
    });
    this.#total.addEventListener('pointerdown', (event) => event.preventDefault());
  }

  #settle(second) {
    if (!this.#seeking) return;
    this.#seeking = false;
    if (Math.floor(second) !== Math.floor((this.#film.positionMs ?? 0) / 1000)) this.#film.seekToSecond(second);
    this.show();
  }

  // The player goes to whole seconds only: the engine's own steps would lead nowhere.
  #keyPressed(event) {
    const { durationMs } = this.#film;
    if (durationMs === null || event.ctrlKey || event.altKey || event.shiftKey) return;
    if (event.key in keySteps) this.#film.seekBy(keySteps[event.key]);
    else if (event.key === 'Home') this.#film.seekToSecond(0);
    else if (event.key === 'End') this.#film.seekToSecond(durationMs / 1000);
    else return;
    event.preventDefault();
    event.stopPropagation();
  }

  // What lies at a share of the film.
  #tell(share) {
    const { durationMs } = this.#film;
    if (durationMs === null) return;
    const second = Math.floor((share * durationMs) / 1000);
    const [time, ...lines] = this.#preview.children;
    put(time, timeText(second * 1000));
    lines.forEach((line, i) => {
      const track = this.#tracks[i];
      put(line, track ? said(track.index, second * 1000) : '');
      line.lang = track?.tag ?? '';
    });
    this.#preview.hidden = false;
    // Above the pointer, but never out of the window.
    const { left, width } = this.#seek.getBoundingClientRect();
    const half = this.#preview.offsetWidth / 2;
    const room = this.#seek.ownerDocument.documentElement.clientWidth;
    const middle = Math.min(room - half - 8, Math.max(half + 8, left + thumbPx / 2 + share * (width - thumbPx)));
    this.#preview.style.transform = `translateX(${Math.round(middle - half)}px)`;
  }
}

/** What is said in the second that begins at a time. */
export function said(index, fromMs) {
  const cues = index.at(fromMs);
  if (cues.length === 0) {
    const next = index.cues[index.lastStarted(fromMs) + 1];
    if (next && next.startMs < fromMs + 1000) cues.push(next);
  }
  return cues.flatMap(({ lines }) => lines).join(' ');
}

function put(element, text) {
  if (element.textContent !== text) element.textContent = text;
}
