// SPDX-License-Identifier: GPL-3.0-or-later

/**
 * Shows that a file hangs over the page. The player takes the drop itself, wherever it falls, and hands on to the page
 * only that a film has come over it and has gone; so there is nothing to accept here.
 */
export class DropField {
  #body;

  constructor(document) {
    this.#body = document.body;
    document.addEventListener('dragenter', (event) => {
      if (event.dataTransfer?.types.includes('Files')) this.#show(true);
    });
    document.addEventListener('dragleave', (event) => {
      // From one element to the next one is no leaving.
      if (!event.relatedTarget) this.#show(false);
    });
    // Never seen while the player takes the drop, and no reason to open the file in place of the page.
    for (const name of ['dragover', 'drop']) {
      document.addEventListener(name, (event) => {
        event.preventDefault();
        if (name === 'drop') this.#show(false);
      });
    }
  }

  #show(hangs) {
    this.#body.classList.toggle('film-above', hangs);
  }
}
