// SPDX-License-Identifier: GPL-3.0-or-later

import { button, create } from '../../shared/elements.mjs';
import { t } from '../../shared/texts.mjs';

/** "Wrong letters?": how the file's bytes can also be read, each with a line of it. */
export class LetterChoice {
  button;
  list;
  #document;
  #subtitles;
  #name;
  #failed;
  #shownFor = 0;

  /** failed(text): what the learner asked for could not be done; empty: nothing is wrong any more. */
  constructor(document, subtitles, name, failed) {
    this.#document = document;
    this.#subtitles = subtitles;
    this.#name = name;
    this.#failed = failed;
    this.button = button(document, { className: 'plain wrong-letters', 'data-text': 'subtitles.wrongLetters' },
      () => this.#toggle());
    this.button.setAttribute('aria-expanded', 'false');
    this.list = create(document, 'div',
      { className: 'letters', role: 'group', 'data-label': 'subtitles.chooseReadable', hidden: true });
  }

  show() {
    const line = this.#subtitles.line(this.#name);
    this.button.hidden = line.source === 'inside'; // a film's own tracks say how they are written
    if (line.subtitleId !== this.#shownFor) this.#close();
  }

  #close() {
    this.list.hidden = true;
    this.button.setAttribute('aria-expanded', 'false');
  }

  async #toggle() {
    if (!this.list.hidden) {
      this.#close();
      return;
    }
    const { subtitleId } = this.#subtitles.line(this.#name);
    this.#shownFor = subtitleId;
    this.#failed('');
    try {
      const { encoding, guesses } = await this.#subtitles.api.encodings(subtitleId);
      this.#offer(subtitleId, encoding, guesses.filter(({ sample }) => sample));
    } catch (error) {
      this.#failed(error.message);
      return;
    }
    this.list.hidden = false;
    this.button.setAttribute('aria-expanded', 'true');
    this.list.scrollIntoView({ block: 'nearest' });
    this.list.querySelector('[aria-pressed="true"]')?.focus({ focusVisible: false });
  }

  #offer(subtitleId, chosen, guesses) {
    if (guesses.length < 2) {
      this.list.replaceChildren(create(this.#document, 'p', { textContent: t('subtitles.oneReading') }));
      return;
    }
    const current = guesses.find(({ encoding }) => encoding === chosen) ?? guesses[0];
    const items = guesses.map((guess) => button(this.#document, {
      className: 'line', dir: 'auto', title: guess.encoding, ariaPressed: String(guess === current),
    }, () => this.#choose(subtitleId, guess.encoding), guess.sample));
    this.list.replaceChildren(create(this.#document, 'p', { textContent: t('subtitles.chooseReadable') }), ...items);
  }

  async #choose(subtitleId, encoding) {
    this.button.focus({ focusVisible: false });
    this.#close();
    this.#failed('');
    await this.#subtitles.setEncoding(subtitleId, encoding).catch((error) => this.#failed(error.message));
  }
}
