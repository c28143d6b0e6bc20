// SPDX-License-Identifier: GPL-3.0-or-later

import { leavePlace } from '../../shared/askedplace.mjs';
import { number, t } from '../../shared/texts.mjs';
import { filmCard, titleTexts } from './filmcard.mjs';

const filmsAtATime = 24;
const longestOpeningMs = 10_000; // should nothing have come of it, it can be tried again

/** The first view: the field for a film, and the shelf of those that were watched. */
export class FilmsView {
  #document;
  #api;
  #tools;
  #films = [];
  #total = 0;
  #wanted = filmsAtATime;
  #generation = 0;
  #isAnswered = false;
  #opening = null; // the film that is on its way
  #openingTimer = null;

  /** tools: { toast, removal, opened() once a film waits for the page's word, trouble(error, source) }. */
  constructor(document, api, tools) {
    this.#document = document;
    this.#api = api;
    this.#tools = tools;
    document.addEventListener('visibilitychange', () => { if (document.hidden) this.endOpening(); });
    this.#element('more-films').addEventListener('click', () => {
      this.#wanted += filmsAtATime;
      this.refresh();
    });
  }

  async refresh() {
    this.#generation += 1;
    const generation = this.#generation;
    try {
      const films = [];
      let total;
      do {
        const reply = await this.#api.films({ offset: films.length, count: filmsAtATime });
        if (generation !== this.#generation) return;
        films.push(...reply.films);
        total = reply.films.length > 0 ? reply.total : films.length;
      } while (films.length < Math.min(total, this.#wanted));
      this.#films = films;
      this.#total = total;
      this.#tools.trouble(null, 'films');
    } catch (error) {
      this.#tools.trouble(error, 'films'); // what shows stays
    }
    this.#isAnswered = true;
    this.render();
  }

  /** Shows the films that are known; where the keyboard was, it stays. */
  render() {
    if (!this.#isAnswered) return; // the large field would come and go
    this.#element('films').classList.add('is-ready');
    const shelf = this.#element('shelf');
    const films = this.#films.filter((film) => !this.#tools.removal.has(`film ${film.videoId}`));
    const focused = [...shelf.querySelectorAll('button')].indexOf(this.#document.activeElement);
    shelf.replaceChildren(...films.map((film) => filmCard(this.#document, film, {
      still: this.#api.stillAddress(film),
      isBusy: film.videoId === this.#opening,
      opened: () => this.#openFromShelf(film),
      removed: () => this.#remove(film),
    })));
    const buttons = shelf.querySelectorAll('button');
    if (focused >= 0) (buttons[Math.min(focused, buttons.length - 1)] ?? this.#element('tab-films')).focus();
    this.#element('shelf-part').hidden = films.length === 0;
    this.#element('films').classList.toggle('has-films', films.length > 0);
    this.#element('more-films').hidden = this.#films.length >= this.#total;
  }

  /** How many words wait for their review. */
  showDue(dueCount) {
    const due = this.#element('due');
    due.hidden = dueCount === 0;
    due.querySelector('.number').textContent = number(dueCount);
    due.querySelector('.what').textContent = t('films.wordsDue', { count: dueCount });
  }

  /** No film is on its way any longer: it plays, or it could not be played. */
  endOpening() {
    if (this.#opening === null) return;
    clearTimeout(this.#openingTimer);
    this.#opening = null;
    this.render();
  }

  // The shelf's films are gone on with; those that were seen to their end begin anew.
  #openFromShelf(film) {
    const { title } = titleTexts(film.fileName);
    if (!film.isThere) this.#tools.toast.tell(t(film.isAddress ? 'films.howAddress' : 'films.howMoved', { title }));
    else this.open(film.videoId, film.isFinished ? 0 : film.positionMs);
  }

  /** Opens a film at a place, unless another one is on its way. */
  async open(videoId, positionMs) {
    if (this.#opening !== null) return;
    this.#opening = videoId;
    this.render();
    try {
      await this.#tools.removal.carryOut();
      leavePlace(localStorage, videoId, positionMs, Date.now());
      await this.#api.openFilm(videoId);
      this.#tools.opened();
      this.#openingTimer = setTimeout(() => this.endOpening(), longestOpeningMs);
    } catch (error) {
      this.#tools.toast.tell(error.message);
      this.endOpening();
      this.refresh(); // it may have moved away
    }
  }

  #remove(film) {
    const { toast, removal, trouble } = this.#tools;
    removal.begin({
      key: `film ${film.videoId}`,
      carryOut: async () => {
        this.#films = this.#films.filter((each) => each.videoId !== film.videoId);
        await this.#api.forgetFilm(film.videoId).catch((error) => trouble(error));
        await this.refresh();
      },
      takenBack: () => this.render(),
      done: () => toast.hide(),
    });
    toast.offer(t('films.removed', { title: titleTexts(film.fileName).title }), () => removal.takeBack());
    this.render();
  }

  #element(id) {
    return this.#document.getElementById(id);
  }
}
