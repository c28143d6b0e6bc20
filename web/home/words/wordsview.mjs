// SPDX-License-Identifier: GPL-3.0-or-later

import { button, create } from '../../shared/elements.mjs';
import { t } from '../../shared/texts.mjs';
import { Answers } from '../answers.mjs';
import { placeOfWord } from '../marking.mjs';
import { meaningOf } from '../review/meaning.mjs';
import { RowList } from './rowlist.mjs';
import { WordPages } from './wordpages.mjs';
import { statuses, wordRow } from './wordrow.mjs';

const typingPauseMs = 180;
const restMs = 150;
const mostMeanings = 3;
const orders = ['added', 'changed', 'alphabet', 'due'];
const learning = 'learning1,learning2,learning3,learning4';

/** All words that the learner has marked: to look through, to change, to take away. */
export class WordsView {
  #document;
  #api;
  #tools;
  #filter = { text: '', statuses: '', order: 'added' };
  #pages;
  #list;
  #parts = {};
  #timer = null;
  #meanings = new Answers();
  #wasLoaded = false;

  /**
   * tools: { toast, removal, play(soundUrl), learnerTag(), find(text), lists(), say(text), trouble(error, source),
   * changed() after a change of a word }.
   */
  constructor(document, api, tools) {
    this.#document = document;
    this.#api = api;
    this.#tools = tools;
    this.#pages = new WordPages(
      (offset, count) => api.words({ ...this.#filter, offset, count }), (error) => this.#pagesChanged(error));
    this.#build();
  }

  /** Anew from the service; the place in the list stays. */
  async refresh() {
    const { first, last } = this.#list.range;
    await this.#pages.renew(first, last);
  }

  /** The interface speaks another language. */
  render() {
    this.#meanings.clear();
    this.#label();
    this.#list.draw(true);
    this.#showCount();
  }

  shown() {
    this.#list.draw();
  }

  focus() {
    this.#parts.text.focus();
    this.#parts.text.select();
  }

  #build() {
    const make = (...rest) => create(this.#document, ...rest);
    const parts = this.#parts;
    parts.text = make('input', {
      type: 'search', className: 'field', maxLength: 200, autocomplete: 'off', spellcheck: false,
    });
    parts.status = make('select', { className: 'field' });
    parts.order = make('select', { className: 'field' });
    parts.lists = button(this.#document, { className: 'plain', ariaHasPopup: 'dialog' }, () => this.#tools.lists());
    parts.count = make('p', { id: 'word-count', role: 'status' });
    parts.list = make('div', { id: 'word-list' });
    parts.empty = make('p', { className: 'nothing', hidden: true });
    parts.text.addEventListener('input', () => {
      clearTimeout(this.#timer);
      this.#timer = setTimeout(() => this.#search({ text: parts.text.value.trim() }), typingPauseMs);
    });
    parts.text.addEventListener('keydown', (event) => {
      if (event.key !== 'ArrowDown' || !this.#list.focusRow(0)) return;
      event.preventDefault();
    });
    parts.status.addEventListener('change', () => this.#search({ statuses: parts.status.value }));
    parts.order.addEventListener('change', () => this.#search({ order: parts.order.value }));
    this.#document.getElementById('words').append(
      make('div', { className: 'tool-row', role: 'search' }, parts.text, parts.status, parts.order),
      make('div', { className: 'count-row' }, parts.count, parts.lists), parts.empty, parts.list);
    this.#list = new RowList(parts.list, this.#source());
    this.#label();
  }

  #source() {
    const pages = this.#pages;
    const actions = {
      meaning: (word, isWanted) => this.#meaning(word, isWanted),
      setGloss: (word, gloss) => this.#change(word, { gloss }, t('words.glossKept', { word: word.lemma })),
      setStatus: (word, status) => this.#change(word, { status }, t('words.statusSet', {
        word: word.lemma, status: t(`status.${status}`),
      })),
      play: this.#tools.play,
      learnerTag: this.#tools.learnerTag,
      find: (word) => this.#tools.find(word.lemma),
      remove: (word) => this.#remove(word),
    };
    return {
      get length() { return pages.length; },
      item: (at) => pages.word(at),
      keyOf: ({ lemma }) => lemma,
      need: (first, last) => pages.need(first, last),
      row: (word) => wordRow(this.#document, word, actions),
    };
  }

  #label() {
    const { text, status, order, lists } = this.#parts;
    text.placeholder = t('words.filter');
    text.ariaLabel = t('words.filter');
    status.ariaLabel = t('words.whichStatus');
    order.ariaLabel = t('words.order');
    lists.textContent = t('words.lists');
    this.#list.label = t('home.words');
    const option = (value, textContent, chosen) => (
      create(this.#document, 'option', { value, textContent, selected: value === chosen }));
    const { statuses: chosen, order: chosenOrder } = this.#filter;
    status.replaceChildren(option('', t('words.allStatuses'), chosen), option(learning, t('words.allLearning'), chosen),
      ...statuses.map((each) => option(each, t(`status.${each}`), chosen)));
    order.replaceChildren(...orders.map((each) => option(each, t(`words.order.${each}`), chosenOrder)));
  }

  async #search(changes) {
    this.#filter = { ...this.#filter, ...changes };
    this.#list.scrollToStart();
    await this.#pages.renew();
  }

  #pagesChanged(error) {
    this.#tools.trouble(error, 'words');
    this.#wasLoaded ||= !error;
    this.#showCount();
    this.#list.draw();
  }

  #showCount() {
    if (!this.#wasLoaded) return;
    const { length } = this.#pages;
    const isFiltered = Boolean(this.#filter.text || this.#filter.statuses);
    this.#parts.count.textContent = length > 0 ? t('words.count', { count: length }) : '';
    this.#parts.empty.hidden = length > 0;
    this.#parts.empty.textContent = t(isFiltered ? 'words.noneFound' : 'words.none');
    this.#parts.list.hidden = length === 0;
  }

  async #change(word, changes, said) {
    try {
      const changed = await this.#api.changeWord(word.lemma, changes);
      // A row has the newest line only, and its sound's address.
      this.#pages.replace({ ...word, ...changed, sightings: word.sightings });
      this.#tools.say(said);
      this.#tools.changed();
    } catch (error) {
      this.#tools.trouble(error);
      this.#pages.replace({ ...word });
      this.#list.remake(word);
    }
    this.#list.draw();
  }

  #remove(word) {
    const { toast, removal } = this.#tools;
    removal.begin({
      key: `word ${word.lemma}`,
      carryOut: () => this.#forget(word),
      takenBack: () => this.#hideOrShow(() => this.#pages.show(word.lemma)),
      done: () => toast.hide(),
    });
    toast.offer(t('words.removed', { word: word.lemma }), () => removal.takeBack());
    this.#hideOrShow(() => this.#pages.hide(word.lemma));
  }

  async #forget(word) {
    try {
      await this.#api.forgetWord(word.lemma);
      this.#pages.forget(word.lemma);
    } catch (error) {
      this.#tools.trouble(error);
      this.#hideOrShow(() => this.#pages.show(word.lemma));
    }
    const { first, last } = this.#list.range;
    await this.#pages.renew(first, last);
    this.#tools.changed();
  }

  #hideOrShow(change) {
    change();
    this.#showCount();
    this.#list.draw();
  }

  /** A promise that always keeps: the dictionary's first words for it, perhaps empty. */
  async #meaning({ lemma, sightings: [sighting] }, isWanted) {
    if (!this.#meanings.has(lemma)) {
      // Words that only pass by while the list is scrolled are not looked up.
      do await new Promise((go) => { setTimeout(go, restMs); });
      while (isWanted() && this.#list.isMoving);
      if (!isWanted()) return '';
    }
    const place = sighting && placeOfWord(sighting.line, sighting.form);
    const ask = () => (place ? this.#api.lookUp(sighting.line, place.start) : this.#api.lookUp(lemma, 0));
    const told = this.#meanings.of(lemma, ask);
    return told.then((lookup) => meaningOf(lookup, lemma).translations.slice(0, mostMeanings).join(', '), () => '');
  }
}
