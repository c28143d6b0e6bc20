// SPDX-License-Identifier: GPL-3.0-or-later

// The service's routes, as the pages use them. A failure throws an Error with the service's own sentence.

export class ServiceApi {
  #base;

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
    return this.#put('Settings', changes);
  }

  /** How many films the player has been handed by the desktop; with a count, waits (20 s at most) for another. */
  pendingFilms(after) {
    const query = after === undefined ? '' : `?after=${after}`;
    return this.#ask(`Home/PendingFilms${query}`).then((reply) => reply.pendingFilms);
  }

  level() {
    return this.#ask('Home/Level');
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

  audioTracks(videoId) {
    return this.#ask(`MovieFile/AudioTracks?videoId=${videoId}`).then((reply) => reply.audioTracks);
  }

  #put(path, body, options) {
    return this.#ask(path, { ...options, method: 'PUT', body: JSON.stringify(body) });
  }

  async #ask(path, options) {
    const response = await fetch(new URL(path, this.#base), options);
    const reply = await response.json().catch(() => ({}));
    if (!response.ok) throw new Error(reply.error?.message ?? `The service answered ${response.status}.`);
    return reply;
  }
}
