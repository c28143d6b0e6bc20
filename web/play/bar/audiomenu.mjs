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
    const isOurs = (element) => this.#menu.contains(element) || this.#button.contains(element);
    document.addEventListener('pointerdown', (event) => {
      if (!isOurs(event.target)) this.close();
    });
    for (const element of [this.#menu, this.#button]) {
      element.addEventListener('focusout', (event) => {
        if (this.open && !isOurs(event.relatedTarget)) this.close();
      });
    }
    this.#menu.addEventListener('keydown', (event) => this.#keyPressed(event));
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

  #item(track, place, current) {
    const item = this.#document.createElement('button');
    item.type = 'button';
    item.setAttribute('role', 'menuitemradio');
    item.setAttribute('aria-checked', String(current));
    item.textContent = audioTrackName(track, place);
    item.addEventListener('click', (event) => {
      for (const other of this.#menu.children) other.setAttribute('aria-checked', String(other === item));
      this.#chosen(track.trackId);
      // The keyboard goes back to where it came from; a click leaves it to the film.
      if (event.detail === 0) this.#button.focus();
      this.close();
    });
    return item;
  }
}
