// SPDX-License-Identifier: GPL-3.0-or-later

import { isolated } from '../../shared/direction.mjs';
import { button, create, keepFocus } from '../../shared/elements.mjs';
import { spokenLanguage, t } from '../../shared/texts.mjs';
import { lineNames, trackDetails, trackName } from '../lines/subtitles.mjs';
import { TimingCard } from './timingcard.mjs';

const panelName = 'subtitles';
const removerId = ({ subtitleId }) => `remove-${subtitleId}`;
const lineTitle = (name) => t(`subtitles.line.${name}`);

/** The panel of subtitles: which track is which line, files of the learner's own, and the timing of what is shown. */
export class SubtitlePanel {
  #document;
  #subtitles;
  #panels;
  #panel;
  #body;
  #reading;
  #said;
  #taken; // the file that was taken out last can be brought back
  #cards;
  #listed = '';

  /** panels: a SidePanels. film: for its time, and to hold it while a line is picked. */
  constructor(document, panels, subtitles, film) {
    this.#document = document;
    this.#subtitles = subtitles;
    this.#panel = document.getElementById('subtitles-panel');
    this.#panels = panels;
    this.#reading = create(document, 'p', { className: 'reading', role: 'status' });
    this.#said = create(document, 'p', { className: 'said', role: 'alert' });
    this.#taken = create(document, 'p', { className: 'taken', role: 'status' });
    this.#body = create(document, 'tbody');
    this.#cards = lineNames.map((name) => new TimingCard(document, name, subtitles, film,
      (text) => { this.#said.textContent = text; }));
    this.#panel.append(this.#heading(), this.#table(), this.#adder(), this.#taken, this.#said,
      ...this.#cards.map((card) => card.element));
    panels.add(panelName, {
      element: this.#panel,
      button: document.getElementById('subtitles'),
      opened: () => {
        this.#said.textContent = '';
        this.#taken.replaceChildren();
        this.show();
      },
      closed: () => { for (const card of this.#cards) card.closed(); },
    });
  }

  /** To be called after changes of the subtitles. Draws nothing while the panel is closed. */
  show() {
    if (!this.#panels.isOpen(panelName)) return;
    keepFocus(this.#panel, () => this.#draw());
  }

  /** Saves at once what is not saved yet: the page is about to go. */
  saveNow() {
    for (const card of this.#cards) card.saveNow();
  }

  /** To be called after changes of the film. */
  update() {
    for (const card of this.#cards) card.update();
  }

  #draw() {
    const { isReadingFilm, readPercent, tracks } = this.#subtitles;
    const reading = isReadingFilm ? t('subtitles.reading', { percent: readPercent }) : '';
    if (this.#reading.textContent !== reading) this.#reading.textContent = reading;
    const shown = lineNames.map((name) => this.#subtitles.line(name)?.subtitleId ?? 0);
    const listed = JSON.stringify([spokenLanguage(), tracks, shown]);
    if (listed !== this.#listed) this.#list(tracks, shown);
    this.#listed = listed;
    for (const card of this.#cards) card.show();
  }

  #heading() {
    return create(this.#document, 'header', {},
      create(this.#document, 'h2', { id: 'subtitles-title', 'data-text': 'bar.subtitles' }),
      this.#reading,
      button(this.#document, { className: 'close', 'data-title': 'close', 'data-label': 'close' },
        () => this.#panels.close(), '×'));
  }

  #table() {
    const column = (className, key) => create(this.#document, 'th', { className, scope: 'col', 'data-text': key });
    const head = create(this.#document, 'tr', {}, column('unseen', 'subtitles.track'),
      ...lineNames.map((name) => column(name, `subtitles.line.${name}`)));
    return create(this.#document, 'table', {}, create(this.#document, 'thead', {}, head), this.#body);
  }

  // The program's own chooser of files comes with this.
  #adder() {
    const input = create(this.#document, 'input', {
      type: 'file',
      accept: '.srt,.sub', // what the player's chooser offers
      className: 'unseen',
      tabIndex: -1,
      'data-label': 'subtitles.add',
    });
    input.addEventListener('change', () => {
      if (input.files[0]) this.#add(input.files[0]);
      input.value = ''; // the same file can be chosen again
    });
    return create(this.#document, 'p', { className: 'adder' }, input,
      button(this.#document, { className: 'plain', 'data-text': 'subtitles.add' }, () => input.click()));
  }

  async #add(file) {
    this.#said.textContent = '';
    try {
      this.#tell(t('subtitles.added', { name: trackName(await this.#subtitles.add(file)) }));
    } catch (error) {
      this.#said.textContent = error.message;
    }
  }

  #list(tracks, shown) {
    const none = { subtitleId: 0 };
    this.#body.replaceChildren(...[...tracks, none].map((track) => this.#row(track, shown)));
  }

  #row(track, shown) {
    const name = track.subtitleId ? trackName(track) : t('subtitles.none');
    const details = track.subtitleId ? trackDetails(track) : '';
    const title = create(this.#document, 'th', { scope: 'row', ariaLabel: [name, details].filter(Boolean).join(', ') },
      create(this.#document, 'span', { className: 'name', textContent: name, lang: track.languageTag ?? '' }),
      create(this.#document, 'span', { className: 'details', textContent: details, title: details }));
    if (track.source === 'added') title.prepend(this.#remover(track, name));
    const row = create(this.#document, 'tr', { className: track.error ? 'unusable' : '' }, title);
    lineNames.forEach((line, i) => {
      row.append(create(this.#document, 'td', {}, this.#radio(track, line, shown[i], name)));
    });
    return row;
  }

  #remover(track, name) {
    const hint = t('subtitles.remove', { name: track.fileName });
    return button(this.#document, { id: removerId(track), className: 'remove', ariaLabel: hint, title: hint },
      () => this.#remove(track, name), '×');
  }

  async #remove(track, name) {
    const undo = button(this.#document, { className: 'plain', textContent: t('fit.undo') },
      () => this.#bringBack(track, name, undo));
    const hadFocus = this.#document.activeElement?.id === removerId(track);
    if (!await this.#setRemoved(track, true)) return;
    this.#taken.replaceChildren(t('subtitles.removed', { name: isolated(track.fileName) }), ' ', undo);
    if (hadFocus) undo.focus(); // what had the keyboard is gone
  }

  async #bringBack(track, name, undo) {
    const hadFocus = this.#document.activeElement === undo;
    if (!await this.#setRemoved(track, false)) return;
    this.#taken.replaceChildren();
    this.#tell(t('subtitles.added', { name }));
    if (hadFocus) this.#document.getElementById(removerId(track))?.focus();
  }

  // Whether it could be done.
  async #setRemoved({ subtitleId }, isRemoved) {
    this.#said.textContent = '';
    try {
      await this.#subtitles.setRemoved(subtitleId, isRemoved);
      return true;
    } catch (error) {
      this.#said.textContent = error.message;
      return false;
    }
  }

  #radio(track, line, shownId, name) {
    const radio = create(this.#document, 'input', {
      type: 'radio',
      id: `${line}-${track.subtitleId}`,
      name: `line-${line}`,
      className: line,
      checked: track.subtitleId === shownId,
      disabled: Boolean(track.error),
      ariaLabel: `${lineTitle(line)}: ${name}`,
    });
    radio.addEventListener('change', () => this.#choose(line, track.subtitleId));
    return radio;
  }

  // For screen readers: the picture shows it.
  #tell(text) {
    this.#document.getElementById('said').textContent = text;
  }

  async #choose(line, id) {
    this.#said.textContent = '';
    try {
      await this.#subtitles.choose(line, id);
      const chosen = this.#subtitles.line(line);
      const name = chosen ? trackName(chosen) : t('subtitles.none');
      this.#tell(t('subtitles.chosen', { line: lineTitle(line), name }));
    } catch (error) {
      this.#listed = ''; // the press shows what does not hold
      this.show();
      this.#said.textContent = error.message;
    }
  }
}
