// SPDX-License-Identifier: GPL-3.0-or-later

import { ask, asleep, look } from './engine.mjs';
import { SpokenLines } from './spokenlines.mjs';

const shortestSleepMs = 1;
// A timer set for more than some weeks would fire at once.
const longestSleepMs = 60_000;

/**
 * Carries out what the engine decides: sleeps until the moment that it names, and looks at the film whenever that has
 * changed otherwise than by running on.
 */
export class LineTools {
  #film;
  #preferences;
  #now;
  #say;
  #changed;
  #isHeld;
  #state = asleep;
  #cues = [];
  #trackId = null;
  #lines = new SpokenLines();
  #isHard = () => false;
  #ownSeeks = 0;
  #timer = null;
  #isBusy = false;

  /**
   * now(): a monotonic clock in ms; say(key, values): a word to the learner; changed(): called when a tool has begun or
   * ended something; isHeld(): whether the learner is at something, a word's card say, that a drill must wait for.
   */
  constructor(film, preferences, now, { say, changed, isHeld = () => false }) {
    this.#film = film;
    this.#preferences = preferences;
    this.#now = now;
    this.#say = say;
    this.#changed = changed;
    this.#isHeld = isHeld;
    preferences.onChange(() => this.update());
  }

  /** What runs: { run, section } as the engine has them, for whoever shows it. */
  get state() {
    return this.#state;
  }

  get settings() {
    return this.#preferences.get('practice');
  }

  /** The speed that the learner has set, also while a tool plays the film at another. */
  get ownSpeed() {
    return this.#state.toolSpeed === null ? this.#film.speed : this.#state.ownSpeed;
  }

  set ownSpeed(speed) {
    if (this.#state.toolSpeed === null) this.#film.setSpeed(speed);
    else this.#state = { ...this.#state, ownSpeed: speed };
  }

  get hasLines() {
    return this.#lines.count > 0;
  }

  /** isHard(cue): whether it has a word that the learner does not know. To be called again when that changes. */
  setHard(isHard) {
    this.#isHard = isHard;
    this.#setLines();
  }

  /** cues: of the track that the tools go by, in the film's time. Of another track than before, nothing goes on. */
  load(cues, trackId) {
    if (trackId !== this.#trackId) this.#state = { ...this.#state, run: null, made: null };
    this.#trackId = trackId;
    this.#cues = cues;
    this.#setLines();
  }

  /** To be called whenever the film's time may have changed otherwise than by running on. */
  update() {
    if (this.#isBusy) return;
    this.#carryOut((moment, world) => look(this.#state, moment, world));
  }

  /** request: of the engine's. False where there is no line for it, or no tool that it concerns. */
  ask(request) {
    let isDone = false;
    this.#carryOut((moment, world) => {
      const outcome = ask(this.#state, request, moment, world);
      isDone = outcome.isDone;
      return outcome;
    });
    this.update();
    return isDone;
  }

  #setLines() {
    this.#lines = new SpokenLines(this.#cues, this.#isHard);
    this.update();
  }

  // What is done changes the film, which tells so at once: it is looked at again only when all is done.
  #carryOut(decide) {
    clearTimeout(this.#timer);
    this.#timer = null;
    const before = this.#state;
    this.#isBusy = true;
    let outcome;
    do {
      outcome = decide(this.#moment(), { lines: this.#lines, settings: this.settings });
      this.#state = outcome.state;
      for (const deed of outcome.deeds) this.#do(deed);
      decide = (moment, world) => look(this.#state, moment, world);
    } while (outcome.deeds.length > 0);
    this.#isBusy = false;
    this.#sleep(outcome);
    const { run, section } = this.#state;
    if (run !== before.run || section !== before.section) this.#changed();
  }

  #do({ name, second, speed, on, standsAtMs, key, values }) {
    const film = this.#film;
    if (name === 'seek') {
      this.#ownSeeks += 1;
      film.seekToSecond(second);
    } else if (name === 'speed') film.setSpeed(speed);
    else if (name === 'hush') film.hush(on);
    else if (name === 'say') this.#say(key, values);
    else film.setPlaying(name === 'play', standsAtMs);
  }

  #sleep({ nextMs, nextNow }) {
    const now = this.#now();
    let sleepMs = nextNow - now;
    const film = this.#film;
    if (film.clock.moves(now)) sleepMs = Math.min(sleepMs, (nextMs - film.commandMs) / film.speed);
    if (sleepMs === Infinity) return;
    const boundedMs = Math.min(longestSleepMs, Math.max(shortestSleepMs, sleepMs));
    this.#timer = setTimeout(() => this.update(), boundedMs);
  }

  #moment() {
    const film = this.#film;
    const now = this.#now();
    const { commandMs: positionMs, playing: isPlaying, speed, durationMs } = film;
    const jumps = film.seeks - this.#ownSeeks;
    const moves = film.clock.moves(now);
    return { now, positionMs, isPlaying, moves, speed, durationMs, jumps, isHeld: this.#isHeld() };
  }
}
