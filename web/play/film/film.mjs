// SPDX-License-Identifier: GPL-3.0-or-later

// The film as the page knows it: what it has told the player, what the player has told it. The player never says
// whether it plays; the page's own commands are all there is. No element is touched here.

import { PlaybackClock } from './clock.mjs';
import { LineSteps, secondsBefore } from '../lines/linesteps.mjs';
import { mayPauseAt } from './lastsecond.mjs';

const volumeStepPercent = 5;
const loudestPercent = 200;
const slowest = 0.5;
const fastest = 2;
const slowestOfAll = 0.25;
const fastestOfAll = 4;
const speedStep = 0.1;
// A report comes four times a second: the last one of a film is this far before its end, at most.
const endZoneMs = 600;
// Lengths are told wrongly, too: a film that falls silent so close to its end is over.
const leastEndMs = 10_000;
const mostEndMs = 60_000;
const endShare = 0.02;
// A report that comes this long after a Pause is of a film that runs on, or has been moved: told again, a Pause does
// no harm.
const pauseTimeMs = 700;
// So long after the page has given a command the film obeys.
const commandMs = 7;
// Short stalls come and go; what lasts this long is worth a word.
const longestSilenceMs = 4000;

const clamp = (value, least, most) => Math.min(most, Math.max(least, value));

export class Film {
  clock = new PlaybackClock();
  durationMs = null;
  volumePercent = 100;
  muted = false;
  audioTrackId = null;
  /** How often the film has been told to go elsewhere. */
  seeks = 0;
  #isHushed = false;
  #heardAt;
  #pausedAt = -Infinity;
  #pausesOnceBack = false;
  #bridge;
  #now;
  #steps = null;
  #soundToRestore = null;
  #changed;

  /** bridge: a PlayerBridge; now(): a monotonic clock in ms; changed(): called after every change. */
  constructor(bridge, now, changed) {
    this.#bridge = bridge;
    this.#now = now;
    this.#heardAt = now();
    this.#changed = changed;
  }

  get positionMs() {
    return this.clock.position(this.#now());
  }

  /** The time of which the lines show: a film that waits right before the line that it was sent to shows that line. */
  get shownMs() {
    const position = this.positionMs;
    if (this.playing || position === null) return position;
    return this.#steps?.startAhead(position) ?? position;
  }

  /** Where the film is when a command that is given now takes effect; null before the first report. */
  get commandMs() {
    const now = this.#now();
    const position = this.clock.position(now);
    return position !== null && this.clock.moves(now) ? position + commandMs * this.speed : position;
  }

  get playing() {
    return this.clock.running;
  }

  get speed() {
    return this.clock.speed;
  }

  get canStepLines() {
    return this.#steps !== null;
  }

  /** The film has stopped by itself close to its end. */
  get ended() {
    if (this.durationMs === null || !this.clock.stalled(this.#now())) return false;
    const leftMs = this.durationMs - this.positionMs;
    if (leftMs <= endZoneMs * Math.max(1, this.speed)) return true;
    const nearMs = clamp(endShare * this.durationMs, leastEndMs, mostEndMs);
    return leftMs <= nearMs && this.#unheardMs >= longestSilenceMs;
  }

  /** The film has ended; or nobody knows its length and it has stopped by itself, which may be the end. */
  get stands() {
    if (this.durationMs !== null) return this.ended;
    return this.clock.stalled(this.#now()) && this.#unheardMs >= longestSilenceMs;
  }

  /** The film should run but has not been heard of for some seconds: its server is silent, or slow to begin. */
  get waiting() {
    return this.silenceMs >= longestSilenceMs;
  }

  /** For how long the film, which should run, has not been heard of. */
  get silenceMs() {
    if (!this.playing || this.ended) return 0;
    // Where the end is not known, silence may be the end.
    if (this.durationMs === null && this.positionMs !== null) return 0;
    return this.#unheardMs;
  }

  get #unheardMs() {
    return this.#now() - this.#heardAt;
  }

  /** index: of the track that lines are stepped by, or null. */
  stepBy(index) {
    this.#steps = index && index.cues.length > 0 ? new LineSteps(index) : null;
    this.#changed();
  }

  reported(positionMs) {
    this.#heardAt = this.#now();
    this.#insistOnPause(positionMs);
    this.clock.report(positionMs, this.#now());
    if (this.#soundToRestore !== null) this.setAudioTrack(this.#soundToRestore);
    this.#changed();
  }

  // The player leaves a Pause undone while it opens a film or waits for more of it.
  #insistOnPause(positionMs) {
    if (this.playing) return;
    const isBack = this.#pausesOnceBack && mayPauseAt(positionMs, this.durationMs);
    if (!isBack && this.#now() - this.#pausedAt < pauseTimeMs) return;
    this.#pausedAt = this.#now();
    this.#pausesOnceBack = this.#leaveLastSecond(positionMs);
    if (!this.#pausesOnceBack) this.#bridge.execute('Pause');
  }

  // True when the film has been sent back to where it can be paused.
  #leaveLastSecond(positionMs) {
    const lastSecond = this.durationMs === null ? 0 : Math.floor(this.durationMs / 1000);
    if (lastSecond === 0 || positionMs === null || this.ended || mayPauseAt(positionMs, this.durationMs)) return false;
    this.seekToSecond(lastSecond - 1);
    return true;
  }

  togglePlay() {
    if (this.ended) this.playAgain();
    else this.setPlaying(!this.playing || this.stands);
  }

  /**
   * standsAtMs: of a pause, where the film then stands, if that is known better than by its time. In the film's last
   * second a pause goes back a second first.
   */
  setPlaying(playing, standsAtMs) {
    const isSentBack = !playing && this.playing && this.#leaveLastSecond(this.commandMs);
    this.#pausesOnceBack = isSentBack;
    this.#heardAt = this.#now();
    if (!playing) this.#pausedAt = this.#now();
    this.clock.setRunning(playing, this.#now(), isSentBack ? undefined : standsAtMs);
    if (!isSentBack) this.#bridge.execute(playing ? 'Play' : 'Pause');
    this.#changed();
  }

  playAgain() {
    this.seekToSecond(0);
    this.setPlaying(true);
  }

  home() {
    this.#bridge.execute('Stop');
  }

  /** The player seeks to whole seconds only. */
  seekToSecond(second) {
    const last = this.durationMs === null ? Infinity : Math.max(0, Math.floor(this.durationMs / 1000) - 1);
    const position = clamp(Math.floor(second), 0, last);
    this.#heardAt = this.#now();
    this.seeks += 1;
    this.clock.seek(position * 1000, this.#now());
    this.#bridge.execute('SeekTo', { position });
    this.#changed();
  }

  seekBy(seconds) {
    if (this.positionMs !== null) this.seekToSecond(Math.round(this.positionMs / 1000) + seconds);
  }

  stepLine(step) {
    const cue = this.positionMs === null ? null : this.#steps?.jump(step, this.positionMs);
    if (cue) this.seekToSecond(secondsBefore(cue.startMs));
  }

  /** place: of a line of the track that lines are stepped by. */
  goToLine(place) {
    const cue = this.#steps?.goTo(place);
    if (cue) this.seekToSecond(secondsBefore(cue.startMs));
  }

  /** The place of the line that is said now or was said last; -1 before the first. */
  get linePlace() {
    return this.positionMs === null ? -1 : this.#steps?.current(this.positionMs) ?? -1;
  }

  setVolume(percent) {
    this.volumePercent = clamp(Math.round(percent), 0, loudestPercent);
    this.muted = false; // the player's command unmutes, too
    this.#bridge.execute('SetVolume', { volume: this.volumePercent });
    this.#changed();
  }

  changeVolume(direction) {
    this.setVolume(this.volumePercent + direction * volumeStepPercent);
  }

  toggleMute() {
    this.muted = !this.muted;
    this.#bridge.execute('SetMuted', { muted: this.muted || this.#isHushed });
    this.#changed();
  }

  /** Keeps a moment silent, whatever the learner has set; that holds again afterwards. */
  hush(on) {
    this.#isHushed = on;
    if (!this.muted) this.#bridge.execute('SetMuted', { muted: on });
  }

  setSpeed(speed) {
    const rounded = clamp(Math.round(speed * 100) / 100, slowestOfAll, fastestOfAll);
    this.clock.setSpeed(rounded, this.#now());
    this.#bridge.execute('SetPlaybackSpeed', { speed: rounded });
    this.#changed();
  }

  changeSpeed(direction) {
    this.setSpeed(clamp(Math.round((this.speed + direction * speedStep) * 10) / 10, slowest, fastest));
  }

  /** Takes a track as soon as the film is heard: before that, the player knows of none. */
  restoreAudioTrack(trackId) {
    if (this.positionMs !== null) this.setAudioTrack(trackId);
    else this.#soundToRestore = trackId;
  }

  setAudioTrack(trackId) {
    this.#soundToRestore = null;
    this.audioTrackId = trackId;
    this.#bridge.execute('SetAudioTrack', { track: trackId });
    this.#changed();
  }
}
