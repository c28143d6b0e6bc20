// SPDX-License-Identifier: GPL-3.0-or-later

import { t } from '../../shared/texts.mjs';
import { noticeOf } from '../bar/notice.mjs';
import { lineNames, trackDetails, trackName } from './subtitles.mjs';
import { filmTime, shifted, startingAt, timingText, unmoved } from './timing.mjs';

const stepMs = 100;

/** What the keys do with subtitles: they move the upper line, or the only one. */
export class TimingKeys {
  #subtitles;
  #film;
  #say;
  #asked = null; // the subtitle that was asked for last, until it is there

  constructor(subtitles, film, say) {
    this.#subtitles = subtitles;
    this.#film = film;
    this.#say = say;
  }

  move(direction) {
    if (this.#line) this.#moveTo(shifted(this.#line.timing, direction * stepMs));
  }

  reset() {
    if (this.#line) this.#moveTo(unmoved);
  }

  /** The line that has begun last (step 0) or the one after it (1) begins now. */
  lineIsNow(step) {
    const positionMs = this.#film.positionMs;
    if (!this.#line || positionMs === null) return;
    const { cues, timing } = this.#line;
    const started = cues.filter((cue) => filmTime(cue.startMs, timing) <= positionMs).length - 1;
    const cue = cues[started + step];
    if (cue) this.#moveTo(startingAt(timing, cue, positionMs));
  }

  /** The next track that can be used becomes the upper line; after the last one, none. */
  async nextSubtitle() {
    const lower = this.#subtitles.line('native')?.subtitleId;
    const usable = this.#subtitles.tracks.filter(({ error, subtitleId }) => !error && subtitleId !== lower);
    if (usable.length === 0 && !this.#subtitles.line('learned')) { // not the learner's choice: nothing is kept
      this.#say(noticeOf(this.#subtitles, 0) || t('subtitles.noneShown'));
      return;
    }
    const ids = [0, ...usable.map(({ subtitleId }) => subtitleId)];
    const shown = this.#asked ?? this.#subtitles.line('learned')?.subtitleId ?? 0;
    const next = ids[(ids.indexOf(shown) + 1) % ids.length];
    this.#asked = next;
    try {
      await this.#subtitles.choose('learned', next);
    } catch (error) {
      this.#asked = null;
      this.#say(error.message);
      return;
    }
    if (this.#asked !== next) return; // the key was pressed again meanwhile
    this.#asked = null;
    const line = this.#subtitles.line('learned');
    this.#say(line ? t('subtitles.nowShown', { name: trackName(line), details: trackDetails(line) }) : t('subtitles.noneShown'));
  }

  get #name() {
    return lineNames.find((name) => this.#subtitles.line(name));
  }

  get #line() {
    return this.#name ? this.#subtitles.line(this.#name) : null;
  }

  #moveTo(timing) {
    this.#subtitles.move(this.#name, timing);
    this.#say(t('timing.moved', { name: trackName(this.#line), timing: timingText(timing) }));
  }
}
