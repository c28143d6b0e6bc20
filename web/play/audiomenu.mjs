// SPDX-License-Identifier: GPL-3.0-or-later

/** What a sound track is called in the menu: its title, its language, or else its place. */
export function audioTrackName({ title, languageName }, place) {
  if (title && languageName && !title.includes(languageName)) return `${languageName} (${title})`;
  return title || languageName || `Track ${place}`;
}

/** The menu of sound tracks; its button appears only where there is something to choose. */
export class AudioMenu {
  #document;
  #button;
  #menu;
  #chosen;

  constructor(document, chosen) {
    this.#document = document;
    this.#chosen = chosen;
    this.#button = document.getElementById('audio');
    this.#menu = document.getElementById('audio-menu');
    document.addEventListener('pointerdown', (event) => {
      if (!this.#menu.contains(event.target) && !this.#button.contains(event.target)) this.close();
    });
  }

  get open() {
    return !this.#menu.hidden;
  }

  offer(tracks) {
    const current = tracks.find((track) => track.isDefault) ?? tracks[0];
    this.#menu.replaceChildren(...tracks.map((track, i) => this.#item(track, i + 1, track === current)));
    this.#button.hidden = tracks.length < 2;
  }

  toggle() {
    if (this.open) {
      this.close();
      return;
    }
    this.#menu.hidden = false;
    this.#button.setAttribute('aria-expanded', 'true');
    this.#menu.querySelector('[aria-checked="true"]')?.focus({ focusVisible: false });
  }

  close() {
    this.#menu.hidden = true;
    this.#button.setAttribute('aria-expanded', 'false');
  }

  #item(track, place, current) {
    const item = this.#document.createElement('button');
    item.type = 'button';
    item.setAttribute('role', 'menuitemradio');
    item.setAttribute('aria-checked', String(current));
    item.textContent = audioTrackName(track, place);
    item.addEventListener('click', () => {
      for (const other of this.#menu.children) other.setAttribute('aria-checked', String(other === item));
      this.close();
      this.#chosen(track.trackId);
    });
    return item;
  }
}
