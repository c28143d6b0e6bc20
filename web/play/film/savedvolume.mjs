// SPDX-License-Identifier: GPL-3.0-or-later

// The learner's volume: the player starts each film at twice the normal one, and the page turns it down to what was
// left last time, as soon as it can and once more when the sound is known to be there.

const saveAfterMs = 600;

export class SavedVolume {
  #film;
  #api;
  #saved = null; // null until it is known
  #timer = null;
  #isOwed = false; // the player, which is muted, has not been told the volume: that would unmute it

  constructor(film, api) {
    this.#film = film;
    this.#api = api;
  }

  async load() {
    const before = this.#film.volumePercent;
    const settings = await this.#api.settings().catch(() => null);
    const isUntouched = this.#film.volumePercent === before;
    this.#saved = settings?.volumePercent ?? before;
    if (isUntouched) this.#film.volumePercent = this.#saved;
    this.#tellPlayer();
  }

  playerReady() {
    if (this.#saved !== null) this.#tellPlayer();
  }

  #tellPlayer() {
    this.#isOwed = this.#film.muted;
    if (!this.#isOwed) this.#film.setVolume(this.#film.volumePercent);
  }

  /** To be called after changes of the film: keeps a new volume, once it has rested. */
  update() {
    if (this.#isOwed && !this.#film.muted) this.#tellPlayer();
    const volumePercent = this.#film.volumePercent;
    if (this.#saved === null || volumePercent === this.#saved) return;
    this.#saved = volumePercent;
    clearTimeout(this.#timer);
    this.#timer = setTimeout(() => this.saveNow(), saveAfterMs);
  }

  /** Saves at once what has not rested yet: the page is about to go. */
  saveNow() {
    if (this.#timer === null) return;
    clearTimeout(this.#timer);
    this.#timer = null;
    this.#api.changeSettings({ volumePercent: this.#saved }).catch((error) => console.warn(error.message));
  }
}
