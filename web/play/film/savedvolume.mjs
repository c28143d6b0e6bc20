// SPDX-License-Identifier: GPL-3.0-or-later

// The learner's volume: the player starts each film at twice the normal one, and the page turns it down to what was
// left last time, as soon as it can and once more when the sound is known to be there.

const saveAfterMs = 600;

export class SavedVolume {
  #film;
  #api;
  #saved = null;
  #timer = null;

  constructor(film, api) {
    this.#film = film;
    this.#api = api;
  }

  async load() {
    const settings = await this.#api.settings().catch(() => null);
    this.#saved = settings?.volumePercent ?? this.#film.volumePercent;
    this.#film.setVolume(this.#saved);
  }

  playerReady() {
    if (this.#saved !== null && !this.#film.muted) this.#film.setVolume(this.#film.volumePercent);
  }

  /** To be called after changes of the film: keeps a new volume, once it has rested. */
  update() {
    const volumePercent = this.#film.volumePercent;
    if (this.#saved === null || volumePercent === this.#saved) return;
    this.#saved = volumePercent;
    clearTimeout(this.#timer);
    this.#timer = setTimeout(() => {
      this.#api.changeSettings({ volumePercent }).catch((error) => console.warn(error.message));
    }, saveAfterMs);
  }
}
