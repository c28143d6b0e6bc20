// SPDX-License-Identifier: GPL-3.0-or-later

import { create } from '../../../shared/elements.mjs';
import { timeText } from '../../../shared/timetext.mjs';
import { changedRows, rowNow } from './listedlines.mjs';
import { piecesOf } from './pieces.mjs';
import { findIn } from './search.mjs';
import { VirtualList } from './virtuallist.mjs';

// Where the line that is said lies in what is seen: a little above the middle, for what comes is read ahead.
const currentShare = 0.4;
const letterShare = 0.52; // of a letter's height its width, about

/** The lines in a list box: one is said now, one has the keyboard; the list goes along until it is scrolled away. */
export class LineList {
  #element;
  #list;
  #picked;
  #followed;
  #lines = [];
  #tags = ['', ''];
  #wanted = '';
  #current = -1;
  #cursor = -1;
  #follows = true;
  #letterPx = 14;
  #widthEm = 20; // about what is left for the text

  /** element: the scrolling list box. picked(i): a row was chosen. followed(on): whether the list goes along now. */
  constructor(element, picked, followed) {
    this.#element = element;
    this.#picked = picked;
    this.#followed = followed;
    this.#list = new VirtualList(element, (i) => this.#row(i), (i) => this.#estimate(i),
      () => { if (this.#follows) this.#goAlong(false); });
    element.addEventListener('keydown', (event) => this.#keyPressed(event));
    element.addEventListener('focus', () => {
      if (this.#cursor < 0) this.#setCursor(Math.max(this.#current, 0));
    });
    // Rows leave the focus to the film, so that the space bar goes on pausing it; the scroll bar is no row.
    element.addEventListener('pointerdown', (event) => {
      if (event.target !== element) event.preventDefault();
      else this.#leave();
    });
    element.addEventListener('click', (event) => {
      const row = event.target.closest('[role="option"]');
      if (!row) return;
      this.#setCursor(-1);
      this.#pick(Number(row.dataset.row));
    });
    element.addEventListener('wheel', () => this.#leave(), { passive: true });
    element.addEventListener('scroll', () => this.#scrolled(), { passive: true });
  }

  /** Other lines are about to be shown, by show(). tags: the languages of text and under. */
  begin(tags) {
    this.#tags = tags;
    this.#lines = null;
  }

  /**
   * lines: listedLines(), or some of them. What is seen stays where it is, unless they are other lines than before.
   * False: no text has changed.
   */
  show(lines) {
    const before = this.#lines;
    this.#lines = lines;
    this.#fitTimes();
    if (before === null) {
      this.#setOthers();
      return true;
    }
    if (before.length !== lines.length || before.some(({ place }, i) => place !== lines[i].place)) {
      this.#setSome(before);
      return true;
    }
    const { texts, times } = changedRows(before, lines);
    for (const i of times) this.#list.row(i)?.querySelector('.time').replaceChildren(timeText(lines[i].startMs));
    this.#list.remake(texts);
    return texts.length > 0;
  }

  setWanted(wanted) {
    if (wanted === this.#wanted) return;
    this.#wanted = wanted;
    this.#list.redraw();
  }

  /** The row that is said now, -1 for none. */
  setCurrent(i) {
    if (i === this.#current) return;
    this.#list.row(this.#current)?.removeAttribute('aria-current');
    this.#current = i;
    this.#list.row(i)?.setAttribute('aria-current', 'true');
    if (this.#follows) this.#goAlong(true);
    else this.#followed(!this.#isAway());
  }

  /** Goes along again. */
  follow() {
    this.#setCursor(-1);
    this.#follows = true;
    this.#followed(true);
    this.#goAlong(false);
  }

  /** Shows a row that is not the one said now: a hit. */
  bring(i) {
    this.#leave();
    this.#setCursor(i);
    this.#list.bring(i, currentShare);
    this.#tellIfAway();
  }

  /** From where a search goes on: the row that was gone to last, else the one that is said, else the first in sight. */
  get place() {
    if (this.#cursor >= 0) return this.#cursor;
    return this.#follows && this.#current >= 0 ? this.#current : this.#list.first;
  }

  #pick(i) {
    this.#follows = true;
    this.#followed(true);
    this.#picked(i);
  }

  #goAlong(smoothly) {
    const calm = matchMedia('(prefers-reduced-motion: reduce)').matches;
    if (this.#current >= 0) this.#list.bring(this.#current, currentShare, smoothly && !calm);
  }

  #setOthers() {
    this.#current = -1;
    this.#setCursor(-1);
    this.#letterPx = Number.parseFloat(getComputedStyle(this.#element).fontSize);
    this.#widthEm = Math.max(8, this.#element.clientWidth / this.#letterPx - 6);
    this.#follows = true;
    this.#followed(true);
    this.#list.reset(this.#lines.length);
  }

  // The same lines, but others of them.
  #setSome(before) {
    const first = rowNow(before, this.#lines, this.#list.first);
    const cursor = rowNow(before, this.#lines, this.#cursor);
    this.#current = -1;
    this.#cursor = -1;
    this.#list.reset(this.#lines.length, Math.max(0, first));
    this.#setCursor(cursor);
  }

  #fitTimes() {
    const longest = this.#lines.length > 0 ? timeText(this.#lines.at(-1).startMs).length : 0;
    this.#element.style.setProperty('--time-width', `${0.55 * longest + 0.2}em`);
  }

  #leave() {
    this.#follows = false;
    this.#list.letGo();
  }

  #isAway() {
    return this.#current >= 0 && !this.#list.isInView(this.#current);
  }

  // A scroll bar that is dragged tells of nothing else.
  #scrolled() {
    if (!this.#follows || (!this.#list.isGoing && this.#isAway())) this.#tellIfAway();
  }

  // Scrolled back to the line that is said, the list goes along again.
  #tellIfAway() {
    const away = this.#isAway();
    this.#follows = !away && this.#cursor < 0;
    this.#followed(!away);
  }

  #setCursor(i) {
    this.#list.row(this.#cursor)?.setAttribute('aria-selected', 'false');
    this.#cursor = i;
    this.#list.row(i)?.setAttribute('aria-selected', 'true');
    if (i >= 0) this.#element.setAttribute('aria-activedescendant', `transcript-${i}`);
    else this.#element.removeAttribute('aria-activedescendant');
  }

  #keyPressed(event) {
    const last = this.#lines.length - 1;
    if (event.key === 'Enter' && this.#cursor >= 0) {
      event.preventDefault();
      this.#pick(this.#cursor);
      return;
    }
    const page = this.#list.rowsInView - 1;
    const step = { ArrowDown: 1, ArrowUp: -1, PageDown: page, PageUp: -page, Home: -Infinity, End: Infinity }[event.key];
    if (step === undefined || last < 0 || event.ctrlKey || event.altKey || event.shiftKey) return;
    event.preventDefault();
    event.stopPropagation();
    const from = this.#follows && this.#current >= 0 ? this.#current : this.#cursor;
    this.#leave();
    this.#setCursor(Math.max(0, Math.min(last, from + step)));
    this.#list.reveal(this.#cursor);
    this.#setCursor(this.#cursor); // its row may have come only now
    this.#tellIfAway();
  }

  #estimate(i) {
    const { text, under } = this.#lines[i];
    const rows = (length, share) => Math.ceil((length * letterShare * share) / this.#widthEm);
    return this.#letterPx * (1.1 + 1.4 * rows(text.length, 1.05) + 1.25 * rows(under.length, 0.92));
  }

  #row(i) {
    const document = this.#element.ownerDocument;
    const { text, slants, under, underSlants, startMs } = this.#lines[i];
    const row = create(document, 'div', { id: `transcript-${i}`, className: 'line', role: 'option' },
      create(document, 'span', { className: 'time', textContent: timeText(startMs) }),
      this.#text('text', text, slants, this.#tags[0]));
    if (under) row.append(this.#text('under', under, underSlants, this.#tags[1]));
    row.dataset.row = i;
    row.setAttribute('aria-posinset', i + 1);
    row.setAttribute('aria-setsize', this.#lines.length);
    row.setAttribute('aria-selected', String(i === this.#cursor));
    if (i === this.#current) row.setAttribute('aria-current', 'true');
    return row;
  }

  #text(className, text, slants, lang) {
    const document = this.#element.ownerDocument;
    const drawn = ({ text: piece, isMarked, isItalic }) => {
      const upright = isMarked ? create(document, 'mark', {}, piece) : piece;
      return isItalic ? create(document, 'i', {}, upright) : upright;
    };
    return create(document, 'span', { className, lang, dir: 'auto' },
      ...piecesOf(text, findIn(text, this.#wanted), slants).map(drawn));
  }
}
