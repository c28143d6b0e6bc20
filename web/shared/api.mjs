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
    return this.#ask('Settings', { method: 'PUT', body: JSON.stringify(changes) });
  }

  /** How many films the player has been handed by the desktop; with a count, waits (20 s at most) for another. */
  pendingFilms(after) {
    const query = after === undefined ? '' : `?after=${after}`;
    return this.#ask(`Home/PendingFilms${query}`).then((reply) => reply.pendingFilms);
  }

  filmLines(videoId) {
    return this.#ask(`MovieFile/Lines?videoId=${videoId}`);
  }

  audioTracks(videoId) {
    return this.#ask(`MovieFile/AudioTracks?videoId=${videoId}`).then((reply) => reply.audioTracks);
  }

  async #ask(path, options) {
    const response = await fetch(new URL(path, this.#base), options);
    const reply = await response.json().catch(() => ({}));
    if (!response.ok) throw new Error(reply.error?.message ?? `The service answered ${response.status}.`);
    return reply;
  }
}
