// SPDX-License-Identifier: GPL-3.0-or-later

// Keeps for each film where the learner is in it, the speed and the sound track, and brings them back: speed and sound
// at once, the place when the learner wants it. No element is touched here.

const keepEveryMs = 5000;
// What lies before this was hardly begun; what is left at the end are its names.
const beginningMs = 30_000;
const longestEndMs = 60_000;
const endShare = 0.05;
// A film that runs on gets no further than its speed; beyond this it has been moved, and the offer is settled.
const movedMs = 5000;
const firstRetryMs = 1000;
const longestRetryMs = 30_000;

export function isOver(positionMs, durationMs) {
  return durationMs > 0 && positionMs >= durationMs - Math.min(longestEndMs, endShare * durationMs);
}

/** Where to offer to go on; null: nowhere. kept: as the service has it; positionMs: where the film is now. */
export function placeToOffer(kept, positionMs) {
  if (kept.isFinished || kept.positionMs < beginningMs || isOver(kept.positionMs, kept.durationMs)) return null;
  // A film that is well under way has been gone on with: only its page is new.
  return positionMs < beginningMs ? kept.positionMs : null;
}

export class Watching {
  #api;
  #videoId;
  #film;
  #now;
  #offer;
  #tools;
  #kept = null; // as the service has it
  #isBegun = false; // the film was heard of, and what was kept is known
  #offered = null; // { positionMs, at } of the film when the offer was made; null when there is none
  #lastKeptAt = -Infinity;
  #saved = '';
  #wasPlaying = true;
  #hasWarned = false;

  /**
   * now(): a monotonic clock in ms. offer: { show(positionMs, durationMs), hide(), asked(): the place where the learner
   * has asked to be already, or null }; settled() must be called when an offer is over. tools: their ownSpeed is the
   * learner's, which may not be the film's now.
   */
  constructor(api, videoId, film, now, offer, tools) {
    this.#api = api;
    this.#videoId = videoId;
    this.#film = film;
    this.#now = now;
    this.#offer = offer;
    this.#tools = tools;
  }

  /**
   * What was kept of this film; without an answer, as of one that was never watched. The answer is asked for until it
   * comes, and nothing is kept before: it would take the place of what is there.
   */
  async load(retryMs = firstRetryMs) {
    try {
      this.#kept = await this.#api.watching(this.#videoId);
    } catch (error) {
      this.#warn(error);
      setTimeout(() => this.load(Math.min(2 * retryMs, longestRetryMs)), retryMs);
      return { positionMs: 0, durationMs: 0, speedPercent: 100, audioTrackId: null, isFinished: false };
    }
    this.update();
    return this.#kept;
  }

  #warn(error) {
    if (!this.#hasWarned) console.warn(error.message);
    this.#hasWarned = true;
  }

  /** To be called after changes of the film. */
  update() {
    const { positionMs, playing, ended } = this.#film;
    if (positionMs === null || !this.#kept) return;
    if (!this.#isBegun) this.#begin(positionMs);
    if (this.#offered) {
      const ran = (this.#now() - this.#offered.at) * this.#film.speed;
      if (positionMs > this.#offered.positionMs + ran + movedMs) this.#offer.hide();
      return;
    }
    const stopped = (this.#wasPlaying && !playing) || ended;
    this.#wasPlaying = playing;
    if (stopped || this.#now() - this.#lastKeptAt >= keepEveryMs) this.#keep();
  }

  /** The learner has taken the offer, or it is over. */
  settled() {
    this.#offered = null;
    this.#lastKeptAt = this.#now();
  }

  /** The page is about to go. */
  saveNow() {
    // While the offer stands, the old place is the one that counts.
    if (this.#isBegun && !this.#offered) this.#keep();
  }

  #begin(positionMs) {
    this.#isBegun = true;
    this.#lastKeptAt = this.#now();
    const asked = this.#offer.asked();
    const place = asked === null ? placeToOffer(this.#kept, positionMs) : null;
    if (asked !== null) this.#film.seekToSecond(asked / 1000);
    if (place !== null) this.#offered = { positionMs, at: this.#now() };
    const { speedPercent } = this.#kept;
    if (speedPercent !== 100 && this.#tools.ownSpeed === 1) this.#tools.ownSpeed = speedPercent / 100;
    if (place !== null) this.#offer.show(place, this.#kept.durationMs);
  }

  #keep() {
    const { positionMs, durationMs, audioTrackId, ended } = this.#film;
    const state = {
      positionMs: Math.max(0, Math.round(positionMs)),
      ...(durationMs === null ? {} : { durationMs: Math.round(durationMs) }),
      speedPercent: Math.round(this.#tools.ownSpeed * 100),
      ...(audioTrackId === null ? {} : { audioTrackId }),
      isFinished: ended || isOver(positionMs, durationMs ?? 0),
    };
    this.#lastKeptAt = this.#now();
    const text = JSON.stringify(state);
    if (text === this.#saved) return;
    this.#saved = text;
    this.#api.changeWatching(this.#videoId, state).catch((error) => {
      this.#saved = '';
      this.#warn(error);
    });
  }
}
