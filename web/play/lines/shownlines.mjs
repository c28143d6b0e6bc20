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

  constructor(document, film, subtitles, now) {
    this.#film = film;
    this.#subtitles = subtitles;
    this.#driver = new LinesDriver(film, now);
    this.#views = lineNames.map((name) => new LinesView(document.getElementById(name)));
  }

  /** To be called after changes of the subtitles. */
  load() {
    const shown = [];
    lineNames.forEach((name, i) => {
      const cues = this.#subtitles.cues(name);
      if (!cues) {
        this.#views[i].release();
        return;
      }
      this.#views[i].reserve(this.#subtitles.line(name).languageTag);
      shown.push({ index: new CueIndex(cues), view: this.#views[i] });
    });
    this.#driver.setTracks(shown);
    this.#film.stepBy(shown[0]?.index ?? null);
  }

  /** To be called whenever the film's time may have changed otherwise than by running on. */
  update() {
    this.#driver.update();
  }
}
