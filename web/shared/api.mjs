// SPDX-License-Identifier: GPL-3.0-or-later

// The service's routes, as the pages use them. A failure throws an Error with a sentence for people.

import { hasText, t } from './texts.mjs';

export class ServiceApi {
  #base;
  #writes = new Set(); // on their way

  /** base: the address of "Api/", below the service's token. */
  constructor(base) {
    this.#base = base;
  }

  /** For a page one folder below the token ("Player/Home"). */
  static ofPage(document) {
    return new ServiceApi(new URL('../Api/', document.baseURI));
  }

  languages() {
    return this.#ask('Settings/Languages').then((reply) => reply.languages);
  }

  settings() {
    return this.#ask('Settings');
  }

  changeSettings(changes) {
    return this.#put('Settings', changes, { keepalive: true });
  }

  /** How many films the player has been handed by the desktop; with a count, waits (20 s at most) for another. */
  pendingFilms(after) {
    const query = after === undefined ? '' : `?after=${after}`;
    return this.#ask(`Home/PendingFilms${query}`).then((reply) => reply.pendingFilms);
  }

  level() {
    return this.#ask('Home/Level');
  }

  /** { total, films }: those that were watched, the newest first. */
  films({ offset = 0, count = 24 } = {}) {
    return this.#ask(`Films?offset=${offset}&count=${count}`);
  }

  /** Takes a film off that list, with its position. */
  forgetFilm(videoId) {
    return this.#ask(`Films?videoId=${videoId}`, { method: 'DELETE', keepalive: true });
  }

  /** Address of the picture where the learner stopped; another one for each time it was watched. */
  stillAddress({ videoId, watchedAtMs }) {
    return new URL(`Films/Still?videoId=${videoId}&watched=${watchedAtMs}`, this.#base).href;
  }

  /** Hands the film's file to the program, which opens it once the page says that it is ready. */
  openFilm(videoId) {
    return this.#post('Films/Open', { videoId });
  }

  filmLines(videoId) {
    return this.#ask(`MovieFile/Lines?videoId=${videoId}`);
  }

  /** The count of what has changed in the film's subtitles; with one, waits (20 s at most) for another. */
  filmChanges(videoId, after) {
    const since = after === undefined ? '' : `&after=${after}`;
    return this.#ask(`MovieFile/Changes?videoId=${videoId}${since}`);
  }

  /** lines: { learned, native }, each a subtitle's id, 0 for none or null for the best; what is absent stays. */
  chooseLines(videoId, lines) {
    return this.#put(`MovieFile/Choice?videoId=${videoId}`, lines);
  }

  addSubtitle(videoId, file) {
    const query = `videoId=${videoId}&fileName=${encodeURIComponent(file.name)}`;
    return this.#ask(`MovieFile/AddSubtitle?${query}`, { method: 'POST', body: file });
  }

  setTiming(subtitleId, timing) {
    return this.#put(`Subtitles/Timing?subtitleId=${subtitleId}`, timing, { keepalive: true });
  }

  beginSync(subtitleId) {
    return this.#ask(`Subtitles/Sync?subtitleId=${subtitleId}`, { method: 'POST', body: '' });
  }

  syncState(subtitleId) {
    return this.#ask(`Subtitles/Sync?subtitleId=${subtitleId}`);
  }

  endSync(subtitleId) {
    return this.#ask(`Subtitles/Sync?subtitleId=${subtitleId}`, { method: 'DELETE' });
  }

  encodings(subtitleId) {
    return this.#ask(`Subtitles/Encoding?subtitleId=${subtitleId}`);
  }

  setEncoding(subtitleId, encoding) {
    return this.#put(`Subtitles/Encoding?subtitleId=${subtitleId}`, { encoding });
  }

  /** { language: what the learner has said, found, languages: all known ones }. */
  subtitleLanguage(subtitleId) {
    return this.#ask(`Subtitles/Language?subtitleId=${subtitleId}`);
  }

  setSubtitleLanguage(subtitleId, language) {
    return this.#put(`Subtitles/Language?subtitleId=${subtitleId}`, { language }, { keepalive: true });
  }

  /** Takes a file that was added out of its film, or brings it back. */
  setSubtitleRemoved(subtitleId, isRemoved) {
    const method = isRemoved ? 'POST' : 'DELETE';
    return this.#ask(`Subtitles/Removed?subtitleId=${subtitleId}`, { method, body: isRemoved ? '' : undefined });
  }

  audioTracks(videoId) {
    return this.#ask(`MovieFile/AudioTracks?videoId=${videoId}`).then((reply) => reply.audioTracks);
  }

  /** What the pages keep of this learner: any object. */
  pageSettings() {
    return this.#ask('Pages/Settings').then((reply) => reply.settings);
  }

  /** changes: each name of it takes the place of the one there; null takes it away. */
  changePageSettings(changes) {
    return this.#put('Pages/Settings', changes, { keepalive: true });
  }

  /** Where the learner is in the film, and with which speed and sound track. */
  watching(videoId) {
    return this.#ask(`MovieFile/Watching?videoId=${videoId}`);
  }

  changeWatching(videoId, changes) {
    return this.#put(`MovieFile/Watching?videoId=${videoId}`, changes, { keepalive: true });
  }

  /** What the word at a place (in UTF-16 units) of a text means. */
  lookUp(text, at) {
    return this.#ask(`Dictionary/Word?text=${encodeURIComponent(text)}&at=${at}`);
  }

  pronunciation(text) {
    return this.#ask(`Speech/Pronunciation?text=${encodeURIComponent(text)}`);
  }

  filmWords(videoId) {
    return this.#ask(`MovieFile/Words?videoId=${videoId}`);
  }

  word(lemma) {
    return this.#ask(`Words/Word?lemma=${encodeURIComponent(lemma)}`);
  }

  /** changes: { status, gloss }, either or both. */
  changeWord(lemma, changes) {
    return this.#put('Words/Word', { lemma, ...changes });
  }

  forgetWord(lemma) {
    return this.#ask(`Words/Word?lemma=${encodeURIComponent(lemma)}`, { method: 'DELETE', keepalive: true });
  }

  /**
   * { total, words }: marked words. statuses: parted by commas, empty for all; text: in the word or its gloss; videoId: of
   * the film in which they were saved.
   */
  words({ text = '', statuses = '', videoId = '', order = 'added', offset = 0, count = 100 }) {
    const query = new URLSearchParams({ order, offset, count });
    if (statuses) query.set('status', statuses);
    if (text) query.set('text', text);
    if (videoId) query.set('videoId', videoId);
    return this.#ask(`Words?${query}`);
  }

  /** text: a word a line, CSV or TSV. */
  importWords(text) {
    return this.#ask('Words/Import', { method: 'POST', body: text });
  }

  /** Address of all marked words as a file; format: csv or tsv. */
  wordListAddress(format) {
    return new URL(`Words/List?format=${format}`, this.#base).href;
  }

  beginAnkiPackage(withClips) {
    return this.#ask(`Words/Anki?clips=${withClips}`, { method: 'POST', body: '' });
  }

  ankiPackage() {
    return this.#ask('Words/Anki');
  }

  endAnkiPackage() {
    return this.#ask('Words/Anki', { method: 'DELETE' });
  }

  get ankiPackageAddress() {
    return new URL('Words/Anki/File', this.#base).href;
  }

  ankiConnect() {
    return this.#ask('Words/AnkiConnect');
  }

  tryAnkiConnect() {
    return this.#ask('Words/AnkiConnect', { method: 'POST', body: '' });
  }

  /** { dueCount, nextDueAtMs, cards }: words that are to be reviewed now. */
  review(count = 20) {
    return this.#ask(`Review?count=${count}`);
  }

  /** grade: again, hard, good or easy. */
  gradeWord(lemma, grade) {
    return this.#post('Review/Grade', { lemma, grade });
  }

  undoGrade() {
    return this.#ask('Review/Undo', { method: 'POST', body: '' });
  }

  /** Address of all that the learner has made, as a file. */
  get learnerFileAddress() {
    return new URL('Learner/File', this.#base).href;
  }

  /** The learner's files that can be brought back, the newest first: [{ id, fileName, folderName, savedAtMs, bytes, isBackup }]. */
  savedLearnerFiles() {
    return this.#ask('Learner/Saved').then((reply) => reply.files);
  }

  /** Puts all of such a file in the place of what is here; the page is to be loaded anew then. */
  bringBackLearnerFile(id) {
    return this.#post('Learner/Saved', { id });
  }

  /** sighting: { form, line, lemma, translation, videoId, subtitleId, startMs, endMs, status, gloss }, as far as known. */
  saveWord(sighting) {
    return this.#post('Words/Save', sighting);
  }

  /** language: a code, empty for all; wholeWord: the last word does not go on. */
  searchLines(text, { below, count = 30, language = '', wholeWord = false } = {}) {
    const query = new URLSearchParams({ text, count });
    if (below !== undefined) query.set('below', below);
    if (language) query.set('language', language);
    if (wholeWord) query.set('wholeWord', true);
    return this.#ask(`Lines/Search?${query}`);
  }

  #post(path, body) {
    return this.#ask(path, { method: 'POST', body: JSON.stringify(body) });
  }

  #put(path, body, options) {
    return this.#ask(path, { ...options, method: 'PUT', body: JSON.stringify(body) });
  }

  /** Settles when nothing is on its way that may change what the service keeps. */
  async settled() {
    while (this.#writes.size > 0) await Promise.allSettled(this.#writes);
  }

  #ask(path, options) {
    const reply = this.#fetch(path, options);
    if (options?.method) {
      this.#writes.add(reply);
      const done = () => this.#writes.delete(reply);
      reply.then(done, done);
    }
    return reply;
  }

  async #fetch(path, options) {
    const response = await fetch(new URL(path, this.#base), options).catch(() => {
      throw new Error(t('error.unreachable'));
    });
    const reply = await response.json().catch(() => ({}));
    if (!response.ok) throw new Error(sentenceOf(reply.error, response.status));
    return reply;
  }
}

// In the interface's language where there is a text for it, else in the service's own words.
function sentenceOf({ code, message } = {}, status) {
  const key = `error.${code}`;
  return hasText(key) ? t(key) : message ?? t('error.status', { status });
}
