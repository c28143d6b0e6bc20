// SPDX-License-Identifier: GPL-3.0-or-later

// The film's subtitles as the service knows them, and what the learner does with them. No element is touched here.

import { t } from '../../shared/texts.mjs';
import { retimed, unmoved } from './timing.mjs';

export const lineNames = ['learned', 'native'];

const saveAfterMs = 500;
const longestPauseMs = 8000;

export class Subtitles {
  tracks = [];
  fileName = '';
  /** Whether the service has answered yet. */
  isLoaded = false;
  isReadingFilm = false;
  readPercent = 0;
  /** Why there is nothing to show; empty when the service answered. */
  trouble = '';
  api;
  #videoId;
  #changed;
  #lines = { learned: null, native: null }; // each { ...track, cues, timing }, the cues in the subtitle's own time
  #loads = 0;
  #answered = 0; // the latest load that has been answered
  #retimed = new Map(); // by line: { cues, timing, inFilm }, as cues() made them last
  #moved = new Map(); // by subtitle: { timing, savedAt: the loads begun by then; null while it is not saved }
  #timers = new Map();

  /** changed(): called after every change. */
  constructor(api, videoId, changed) {
    this.api = api;
    this.#videoId = videoId;
    this.#changed = changed;
  }

  /** The track that a line shows, with its cues in its own time and its timing; null when it shows none. */
  line(name) {
    return this.#lines[name];
  }

  /** What a line draws: its cues in the film's time, the same list until that changes; null when it shows none. */
  cues(name) {
    const line = this.#lines[name];
    if (!line) return null;
    const { cues, timing } = line;
    const last = this.#retimed.get(name);
    if (last?.cues === cues && last.timing === timing) return last.inFilm;
    const inFilm = retimed(cues, timing);
    this.#retimed.set(name, { cues, timing, inFilm });
    return inFilm;
  }

  /** Loads the lines, and again whenever there are more, until the film's own tracks have been read. */
  async follow() {
    for (let pauseMs = 500; ; pauseMs = Math.min(2 * pauseMs, longestPauseMs)) {
      try {
        await this.#followChanges();
        return;
      } catch (error) {
        this.trouble = error.message;
        this.#changed();
        await new Promise((settle) => { setTimeout(settle, pauseMs); });
      }
    }
  }

  async #followChanges() {
    let state = await this.api.filmChanges(this.#videoId);
    for (;;) {
      this.isReadingFilm = state.isReadingFilm;
      this.readPercent = state.readPercent;
      await this.load();
      if (!state.isReadingFilm) return;
      state = await this.api.filmChanges(this.#videoId, state.revision);
    }
  }

  async load() {
    this.#loads += 1;
    const load = this.#loads;
    const reply = await this.api.filmLines(this.#videoId);
    if (load < this.#answered) return; // a later one knows more
    this.#answered = load;
    for (const [id, { savedAt }] of this.#moved) {
      if (savedAt !== null && load > savedAt) this.#moved.delete(id);
    }
    this.isLoaded = true;
    this.trouble = '';
    this.fileName = reply.fileName;
    this.tracks = reply.tracks;
    for (const name of lineNames) this.#lines[name] = this.#asMoved(reply[name]);
    this.#changed();
  }

  /** trackId: 0 for none. */
  async choose(name, trackId) {
    await this.api.chooseLines(this.#videoId, { [name]: trackId });
    await this.load();
  }

  /** Adds a file of the learner's and shows it. Throws with a sentence when it cannot be read. */
  async add(file) {
    const track = await this.api.addSubtitle(this.#videoId, file);
    const name = track.language === 'eng' || !this.#lines.learned ? 'learned' : 'native';
    await this.choose(name, track.subtitleId);
    return track;
  }

  /** Moves a line's track at once, and keeps it when it has rested. */
  move(name, timing) {
    const line = this.#lines[name];
    if (!line) return;
    for (const each of lineNames) {
      if (this.#lines[each]?.subtitleId === line.subtitleId) this.#lines[each] = { ...this.#lines[each], timing };
    }
    this.#moved.set(line.subtitleId, { timing, savedAt: null });
    this.#saveLater(line.subtitleId, saveAfterMs);
    this.#changed();
  }

  /** Saves at once what is not saved yet: the page is about to go. */
  saveNow() {
    for (const [id, { savedAt }] of this.#moved) {
      if (savedAt === null) this.#save(id);
    }
  }

  async setEncoding(trackId, encoding) {
    await this.api.setEncoding(trackId, encoding);
    await this.load();
  }

  /** code: what language it is in; empty: as it was found. */
  async setLanguage(trackId, code) {
    await this.api.setSubtitleLanguage(trackId, code);
    await this.load();
  }

  /** Takes an added file out of the film, or brings it back as it was. */
  async setRemoved(trackId, isRemoved) {
    await this.api.setSubtitleRemoved(trackId, isRemoved);
    await this.load();
  }

  #saveLater(id, pauseMs) {
    clearTimeout(this.#timers.get(id));
    this.#timers.set(id, setTimeout(() => this.#save(id), pauseMs));
  }

  #save(id) {
    clearTimeout(this.#timers.get(id));
    const move = this.#moved.get(id);
    this.api.setTiming(id, move.timing).then(() => {
      move.savedAt = this.#loads;
    }).catch((error) => {
      console.warn(error.message);
      this.#saveLater(id, longestPauseMs);
    });
  }

  // A reply that was on its way while the learner moved the track still has the old timing.
  #asMoved(track) {
    if (!track) return null;
    return { ...track, timing: this.#moved.get(track.subtitleId)?.timing ?? track.timing ?? unmoved };
  }
}

/** What a track is called in a list. */
export function trackName({ languageName, title, fileName }) {
  return languageName || title || fileName || t('subtitles.unknownLanguage');
}

/** What else there is to know of a track, in a short line. */
export function trackDetails(track) {
  const { source, title, fileName, forced, hearingImpaired, isThere, cueCount, error } = track;
  const name = trackName(track);
  const told = [source === 'inside' ? title : fileName, t(isThere ? `subtitles.source.${source}` : `subtitles.gone.${source}`)]
    .filter((text) => text && text !== name);
  if (forced) told.push(t('subtitles.forced'));
  if (hearingImpaired) told.push(t('subtitles.hearing'));
  if (error) told.push(error.message);
  else if (cueCount > 0) told.push(t('subtitles.lines', { count: cueCount }));
  return told.join(' · ');
}
