// SPDX-License-Identifier: GPL-3.0-or-later

import { CueIndex } from './cueindex.mjs';
import { LinesDriver } from './linesdriver.mjs';
import { LinesView } from './linesview.mjs';
import { lineNames } from './subtitles.mjs';

/** The two lines over the picture: brings what the subtitles hold into their places. */
export class ShownLines {
  #film;
  #subtitles;
  #driver;
  #views;
  #index = { learned: null, native: null };

  constructor(document, film, subtitles, now) {
    this.#film = film;
    this.#subtitles = subtitles;
    this.#driver = new LinesDriver(film, now);
    this.#views = Object.fromEntries(lineNames.map((name) => [name, new LinesView(document.getElementById(name))]));
  }

  /** The place of the upper or the lower line. */
  view(name) {
    return this.#views[name];
  }

  /** The CueIndex of a line in the film's time; null when it shows none. */
  index(name) {
    return this.#index[name];
  }

  /** To be called after changes of the subtitles. */
  load() {
    const shown = [];
    for (const name of lineNames) {
      const cues = this.#subtitles.cues(name);
      this.#index[name] = cues && new CueIndex(cues);
      if (!cues) {
        this.#views[name].release();
        continue;
      }
      this.#views[name].reserve(this.#subtitles.line(name).languageTag);
      shown.push({ index: this.#index[name], view: this.#views[name] });
    }
    this.#driver.setTracks(shown);
    this.#film.stepBy(shown[0]?.index ?? null);
  }

  /** To be called whenever the film's time may have changed otherwise than by running on. */
  update() {
    this.#driver.update();
  }

  /** Keeps the lines that show until let go; with a cue of the upper line, that one and what is said beneath it. */
  hold(cue = null) {
    if (cue) {
      this.#views.learned.show([cue]);
      this.#views.native.show(this.#index.native?.at((cue.startMs + cue.endMs) / 2) ?? []);
    }
    for (const name of lineNames) this.#views[name].hold(true);
  }

  release() {
    for (const name of lineNames) this.#views[name].hold(false);
    this.update();
  }
}
