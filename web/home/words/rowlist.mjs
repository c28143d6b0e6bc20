// SPDX-License-Identifier: GPL-3.0-or-later

import { rowsInView } from './wordpages.mjs';

const wideFromRem = 46;
const movingMs = 120;

/**
 * A list of rows of one height, of which only those in view exist. Up and Down go from a row to the same place of the
 * next one, PageUp, PageDown, Home and End further. It has the class "is-wide" where it is so, measured in letters.
 */
export class RowList {
  #list;
  #space;
  #source;
  #rows = new Map(); // place -> { element, item }
  #height = 0;
  #frame = 0;
  #scrolledAt = -Infinity;

  /**
   * list: the element that scrolls. source: { length, item(at), keyOf(item), need(first, last), row(item, at) }, where
   * an item is undefined while it is not here, and row() makes the element of one.
   */
  constructor(list, source) {
    this.#list = list;
    this.#source = source;
    this.#space = list.ownerDocument.createElement('div');
    this.#space.className = 'space';
    this.#space.setAttribute('role', 'list');
    list.append(this.#space);
    list.addEventListener('scroll', () => this.#drawSoon());
    list.addEventListener('keydown', (event) => this.#key(event));
    new ResizeObserver(() => this.#resized()).observe(list);
  }

  /** Whether it is being scrolled. */
  get isMoving() {
    return performance.now() - this.#scrolledAt < movingMs;
  }

  set label(text) {
    this.#space.setAttribute('aria-label', text);
  }

  /** First and last row in view. */
  get range() {
    const { scrollTop, clientHeight } = this.#list;
    const { length } = this.#source;
    return rowsInView({ scrollTop, height: clientHeight, rowHeight: this.#height || 1, length, spare: 0 });
  }

  scrollToStart() {
    this.#list.scrollTop = 0;
  }

  /**
   * To be called when items have come or changed; rows of the same item stay as they are, and so does the one in which
   * something is being typed or chosen, wherever its item stands now. isNew: all are made anew.
   */
  draw(isNew = false) {
    this.#measure();
    if (isNew) this.#clear();
    const { length } = this.#source;
    this.#space.style.height = `${length * this.#height}px`;
    if (this.#list.clientHeight === 0) return;
    const { scrollTop, clientHeight: height } = this.#list;
    const { first, last } = rowsInView({ scrollTop, height, rowHeight: this.#height, length });
    if (length > 0) this.#source.need(first, last);
    this.#moveEdited(first, last);
    this.#dropOthers(first, last);
    for (let at = first; at <= last; at += 1) this.#place(at);
  }

  /** The row of an item is made anew: what was typed or chosen in it does not hold. */
  remake(item) {
    const key = this.#source.keyOf(item);
    for (const row of this.#rows.values()) {
      if (row.item && this.#source.keyOf(row.item) === key) row.item = null;
    }
  }

  // The row in which something is being typed or chosen goes to where its item is now. It is moved by itself least of
  // all: an element that is taken out of the document loses the focus.
  #moveEdited(first, last) {
    const edited = [...this.#rows].find(([, row]) => row.item && isEdited(row.element));
    if (!edited) return;
    const [from, row] = edited;
    const key = this.#source.keyOf(row.item);
    const isSame = (at) => this.#source.item(at) && this.#source.keyOf(this.#source.item(at)) === key;
    let to = from;
    if (!isSame(from)) {
      to = first;
      while (to <= last && !isSame(to)) to += 1;
      if (to > last) return;
    }
    const item = this.#source.item(to);
    if (!isTyped(row.element) && !isAlike(item, row.item)) return;
    if (to !== from) {
      this.#rows.get(to)?.element.remove();
      this.#rows.delete(from);
      this.#rows.set(to, row);
    }
    row.item = item;
    this.#position(row.element, to);
  }

  #clear() {
    for (const { element } of this.#rows.values()) element.remove();
    this.#rows.clear();
  }

  // What has the keyboard's focus stays, out of view though it may be.
  #dropOthers(first, last) {
    for (const [at, { element }] of this.#rows) {
      const isFocused = at < this.#source.length && element.contains(element.ownerDocument.activeElement);
      if ((at >= first && at <= last) || isFocused) continue;
      element.remove();
      this.#rows.delete(at);
    }
  }

  #place(at) {
    const item = this.#source.item(at);
    const there = this.#rows.get(at);
    if (there && there.item === item) return;
    const element = this.#source.row(item, at);
    element.setAttribute('role', 'listitem');
    this.#position(element, at);
    const focused = there ? places(there.element).indexOf(element.ownerDocument.activeElement) : -1;
    const next = [...this.#rows].filter(([place]) => place > at).sort(([a], [b]) => a - b)[0]?.[1].element;
    if (there) there.element.replaceWith(element);
    else this.#space.insertBefore(element, next ?? null);
    this.#rows.set(at, { element, item });
    places(element)[focused]?.focus();
  }

  #position(element, at) {
    element.setAttribute('aria-setsize', this.#source.length);
    element.setAttribute('aria-posinset', at + 1);
    element.style.transform = `translateY(${at * this.#height}px)`;
  }

  // The rows' height is the style's, and follows the size of the letters.
  #measure() {
    this.#list.classList.toggle('is-wide', this.#list.clientWidth >= wideFromRem * this.#rem());
    this.#height = parseFloat(getComputedStyle(this.#space).getPropertyValue('--row-height')) * this.#rem() || 64;
  }

  #rem() {
    return parseFloat(getComputedStyle(this.#list.ownerDocument.documentElement).fontSize);
  }

  #resized() {
    const before = this.#height;
    this.#measure();
    this.draw(before !== this.#height);
  }

  #drawSoon() {
    this.#scrolledAt = performance.now();
    if (this.#frame) return;
    this.#frame = requestAnimationFrame(() => {
      this.#frame = 0;
      this.draw();
    });
  }

  #key(event) {
    if (event.altKey || event.ctrlKey || event.metaKey || event.target.matches('select')) return;
    const from = [...this.#rows].find(([, { element }]) => element.contains(event.target));
    if (!from) return;
    const [at, { element }] = from;
    const page = Math.max(1, Math.floor(this.#list.clientHeight / this.#height) - 1);
    const last = this.#source.length - 1;
    const isText = event.target.matches('input');
    const ends = isText ? {} : { Home: 0, End: last };
    const to = { ArrowUp: at - 1, ArrowDown: at + 1, PageUp: at - page, PageDown: at + page, ...ends }[event.key];
    if (to === undefined) return;
    event.preventDefault();
    this.focusRow(Math.max(0, Math.min(last, to)), places(element).indexOf(event.target));
  }

  /** Gives the focus to what is at a place in a row; false when there is nothing. */
  focusRow(at, place = 0) {
    const top = at * this.#height;
    const { scrollTop, clientHeight } = this.#list;
    if (top < scrollTop) this.#list.scrollTop = top;
    else if (top + this.#height > scrollTop + clientHeight) this.#list.scrollTop = top + this.#height - clientHeight;
    this.draw();
    const row = this.#rows.get(at)?.element;
    const found = row && (places(row)[place] ?? places(row)[0]);
    found?.focus({ preventScroll: true });
    return Boolean(found);
  }
}

const focusedIn = (row) => (row.contains(row.ownerDocument.activeElement) ? row.ownerDocument.activeElement : null);
const isAlike = (item, other) => JSON.stringify(item) === JSON.stringify(other);

function isTyped(row) {
  const field = focusedIn(row);
  return Boolean(field?.matches('input')) && field.value !== field.defaultValue;
}

// Whether a choice is open nobody tells.
const isEdited = (row) => isTyped(row) || Boolean(focusedIn(row)?.matches('select'));

const places = (row) => [...row.querySelectorAll('button, input, select')];
