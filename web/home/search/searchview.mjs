// SPDX-License-Identifier: GPL-3.0-or-later

import { button, create } from '../../shared/elements.mjs';
import { t } from '../../shared/texts.mjs';
import { timeText } from '../../shared/timetext.mjs';
import { titleTexts } from '../films/filmcard.mjs';
import { placesOf, showMarked } from '../marking.mjs';
import { Hits } from './hits.mjs';

const typingPauseMs = 220;
const aheadPx = 300; // so far before its end more lines are fetched

/** Every line of every film that was opened, by what is said in it. */
export class SearchView {
  #document;
  #tools;
  #hits;
  #parts = {};
  #languages = [];
  #timer = null;

  /** tools: { play(soundUrl), watch(videoId, startMs), trouble(error, source), learnerTag() }. */
  constructor(document, api, tools) {
    this.#document = document;
    this.#tools = tools;
    this.#hits = new Hits(api);
    this.#build();
  }

  /** languages: codes with their names that can be chosen besides English; the learner's own first. */
  offer(languages) {
    this.#languages = languages;
    this.#label();
  }

  /** Searches for a text from outside. */
  find(text) {
    const { field, language, whole } = this.#parts;
    field.value = text;
    language.value = '';
    whole.checked = false;
    return this.#search();
  }

  /** Anew; what was found so far shows again, and the place in it stays. */
  async refresh() {
    if (this.#hits.query) await this.#search(this.#hits.count);
  }

  /** The interface speaks another language. */
  render() {
    this.#label();
    this.#show();
  }

  focus() {
    this.#parts.field.focus();
    this.#parts.field.select();
  }

  #make(...rest) {
    return create(this.#document, ...rest);
  }

  #build() {
    const parts = this.#parts;
    parts.field = this.#make('input', {
      type: 'search', className: 'field', maxLength: 200, autocomplete: 'off', spellcheck: false,
    });
    parts.language = this.#make('select', { className: 'field' });
    parts.whole = this.#make('input', { type: 'checkbox' });
    parts.wholeText = this.#make('span', {});
    parts.found = this.#make('p', { className: 'found', role: 'status' });
    parts.hint = this.#make('p', { className: 'nothing' });
    parts.results = this.#make('div', { id: 'results' });
    parts.end = this.#make('div', { className: 'end-mark' });
    parts.field.addEventListener('input', () => {
      clearTimeout(this.#timer);
      this.#timer = setTimeout(() => this.#search(), typingPauseMs);
    });
    parts.language.addEventListener('change', () => this.#search());
    parts.whole.addEventListener('change', () => this.#search());
    const root = this.#document.getElementById('search');
    parts.scroller = this.#make('div', { id: 'search-scroller', tabIndex: 0, role: 'region' },
      parts.found, parts.hint, parts.results, parts.end);
    root.append(
      this.#make('div', { className: 'tool-row', role: 'search' }, parts.field, parts.language,
        this.#make('label', { className: 'switch' }, parts.whole, parts.wholeText)),
      parts.scroller);
    new IntersectionObserver((seen) => { if (seen.some((each) => each.isIntersecting)) this.#more(); },
      { root: parts.scroller, rootMargin: `${aheadPx}px` }).observe(parts.end);
    this.#label();
    this.#show();
  }

  #label() {
    const { field, language, wholeText } = this.#parts;
    field.placeholder = t('search.placeholder');
    field.ariaLabel = t('search.placeholder');
    language.ariaLabel = t('search.language');
    this.#parts.scroller.ariaLabel = t('search.results');
    wholeText.textContent = t('search.wholeWord');
    const chosen = language.value;
    const option = (value, textContent, more = {}) => (
      this.#make('option', { value, textContent, selected: value === chosen, ...more }));
    language.replaceChildren(option('', t('search.anyLanguage')), option('eng', t('search.english')),
      ...this.#languages.map(({ code, nativeName, languageTag }) => option(code, nativeName, { lang: languageTag })));
  }

  async #search(atLeast = 1) {
    clearTimeout(this.#timer);
    const { field, language, whole, scroller } = this.#parts;
    const before = this.#hits.query;
    const query = { text: field.value.trim(), language: language.value, wholeWord: whole.checked };
    try {
      if (!await this.#hits.search(query, atLeast)) return;
      if (before && Object.keys(query).some((name) => before[name] !== query[name])) scroller.scrollTop = 0;
      this.#tools.trouble(null, 'search');
    } catch (error) {
      this.#tools.trouble(error, 'search');
    }
    this.#show();
    this.#fill();
  }

  // What is watched tells only that the end comes into sight, not that it still is.
  #fill() {
    const { scroller, end } = this.#parts;
    if (scroller.clientHeight === 0) return; // another view shows
    if (end.getBoundingClientRect().top <= scroller.getBoundingClientRect().bottom + aheadPx) this.#more();
  }

  async #more() {
    try {
      if (!await this.#hits.more()) return;
    } catch (error) {
      this.#tools.trouble(error, 'search');
      return;
    }
    this.#show();
    this.#fill();
  }

  #show() {
    const { results, found, hint } = this.#parts;
    const { query, count, hasMore, groups } = this.#hits;
    found.hidden = count === 0;
    found.textContent = count === 0 ? '' : t(hasMore ? 'search.foundSoFar' : 'search.found', { count });
    hint.hidden = count > 0;
    hint.textContent = query ? t('search.nothing', { text: query.text }) : t('search.hint');
    const buttons = () => [...results.querySelectorAll('button')];
    const focused = buttons().indexOf(this.#document.activeElement);
    results.replaceChildren(...groups.map((group) => this.#group(group)));
    buttons()[focused]?.focus({ preventScroll: true });
  }

  #group({ videoId, fileName, lines }) {
    const { title, detail } = titleTexts(fileName);
    const id = `found-${videoId}`;
    return this.#make('section', { 'aria-labelledby': id },
      this.#make('h3', { id, dir: 'auto' }, title, this.#make('small', { textContent: detail })),
      this.#make('ol', {}, ...lines.map((line) => this.#line(line))));
  }

  #line({ text, translation, videoId, startMs, soundUrl }) {
    const { language } = this.#hits.query;
    const learnerTag = this.#tools.learnerTag();
    // Of lines in any language nobody knows which one each is in; a line beneath an English one is the learner's.
    const tags = { eng: ['en', learnerTag] }[language] ?? [language && learnerTag, ''];
    const said = this.#make('p', { className: 'line', dir: 'auto', lang: tags[0] });
    showMarked(said, text, placesOf(text, this.#hits.query.text, this.#hits.query));
    const time = timeText(startMs);
    const label = { ariaLabel: t('search.hear', { time }), title: t('search.hearShort') };
    const play = button(this.#document, { className: 'sound', ...label }, () => this.#tools.play(soundUrl));
    play.disabled = !soundUrl;
    const texts = this.#make('div', {}, said);
    if (translation) {
      texts.append(this.#make('p', { className: 'translation', dir: 'auto', lang: tags[1], textContent: translation }));
    }
    const watchLabel = { ariaLabel: t('search.watch', { time }), title: t('search.watchShort') };
    const watch = button(this.#document, { className: 'watch', ...watchLabel },
      () => this.#tools.watch(videoId, startMs), time);
    return this.#make('li', {}, play, texts, watch);
  }
}
