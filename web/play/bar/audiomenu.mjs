// SPDX-License-Identifier: GPL-3.0-or-later

import { t } from '../../shared/texts.mjs';
import { Popup } from './popup.mjs';

/** What a sound track is called in the menu: its title, its language, or else its place. */
export function audioTrackName({ title, languageName }, place) {
  if (title && languageName && !title.includes(languageName)) return `${languageName} (${title})`;
  return title || languageName || t('sound.track', { place });
}

/** The menu of sound tracks; its button appears only where there is something to choose. */
export class AudioMenu {
  #document;
  #button;
  #menu;
  #popup;
  #chosen;
  #tracks = [];
  #current = null;

  /** chosen(trackId, name): a track was chosen. */
  constructor(document, chosen) {
    this.#document = document;
    this.#chosen = chosen;
    this.#button = document.getElementById('audio');
    this.#menu = document.getElementById('audio-menu');
    this.#popup = new Popup(this.#button, this.#menu);
    this.#menu.addEventListener('keydown', (event) => this.#keyPressed(event));
  }

  get open() {
    return this.#popup.open;
  }

  /** keptId: of the track that the learner had chosen for this film; null when there is none. True when it is there. */
  offer(tracks, keptId = null) {
    this.#tracks = tracks;
    const kept = tracks.find(({ trackId }) => trackId === keptId);
    this.#current = kept ?? tracks.find((track) => track.isDefault) ?? tracks[0];
    this.#menu.replaceChildren(...tracks.map((track, i) => this.#item(track, i + 1)));
    this.#button.hidden = tracks.length < 2;
    return kept !== undefined;
  }

  /** After a change of the interface's language. */
  translate() {
    this.#tracks.forEach((track, i) => { this.#menu.children[i].textContent = audioTrackName(track, i + 1); });
  }

  toggle() {
    if (this.open) {
      this.close();
      return;
    }
    this.#popup.show();
    this.#menu.querySelector('[aria-checked="true"]')?.focus({ focusVisible: false });
  }

  close() {
    this.#popup.close();
  }

  /** Goes on to the next track, round the end. */
  next() {
    const next = (this.#tracks.indexOf(this.#current) + 1) % this.#tracks.length;
    if (this.#tracks.length > 1) this.#choose(this.#tracks[next]);
  }

  #choose(track) {
    this.#current = track;
    this.#tracks.forEach((each, i) => this.#menu.children[i].setAttribute('aria-checked', String(each === track)));
    this.#chosen(track.trackId, audioTrackName(track, this.#tracks.indexOf(track) + 1));
  }

  // Escape never comes here: the player keeps it. The button's own keys close the menu, too.
  #keyPressed(event) {
    const step = { ArrowDown: 1, ArrowUp: -1 }[event.key];
    if (step === undefined) return;
    event.preventDefault();
    event.stopPropagation(); // not the volume
    const items = [...this.#menu.children];
    const place = items.indexOf(this.#document.activeElement); // -1 while the list itself has the focus
    const next = place < 0 && step < 0 ? items.length - 1 : place + step;
    items[(next + items.length) % items.length].focus();
  }

  #item(track, place) {
    const item = this.#document.createElement('button');
    item.type = 'button';
    item.setAttribute('role', 'menuitemradio');
    item.setAttribute('aria-checked', String(track === this.#current));
    item.textContent = audioTrackName(track, place);
    item.addEventListener('click', (event) => {
      this.#choose(track);
      // The keyboard goes back to where it came from; a click leaves it to the film.
      if (event.detail === 0) this.#button.focus();
      this.close();
    });
    return item;
  }
}
