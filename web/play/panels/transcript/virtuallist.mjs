// SPDX-License-Identifier: GPL-3.0-or-later

import { create } from '../../../shared/elements.mjs';
import { Heights } from './heights.mjs';

// Rows above and beneath what is seen, so that a turn of the wheel finds them there.
const spareRows = 6;
// Between a row that was scrolled to and the edge.
const marginPx = 12;

/** A long list of rows of differing heights, of which only those in sight are in the page. It draws when it scrolls. */
export class VirtualList {
  #scroller;
  #space;
  #makeRow;
  #estimate;
  #heights = new Heights([]);
  #rows = new Map(); // place -> element
  #measured = new Set();
  #width = 0; // for which they were measured
  #goal = null; // where a smooth way ends

  /** makeRow(i): its element. estimate(i): about how high it will be. resized(): what is seen has another size. */
  constructor(scroller, makeRow, estimate, resized) {
    this.#scroller = scroller;
    this.#makeRow = makeRow;
    this.#estimate = estimate;
    this.#space = create(scroller.ownerDocument, 'div', { className: 'space', role: 'presentation' });
    scroller.append(this.#space);
    scroller.addEventListener('scroll', () => {
      if (this.#goal !== null && Math.abs(scroller.scrollTop - this.#goal) < 2) this.#goal = null;
      this.#draw();
    }, { passive: true });
    const view = scroller.ownerDocument.defaultView;
    new view.ResizeObserver(() => {
      if (scroller.clientWidth === 0) return;
      if (scroller.clientWidth !== this.#width) this.#measureAnew();
      else this.#draw();
      resized();
    }).observe(scroller);
  }

  get count() {
    return this.#heights.count;
  }

  /** Other rows, as many as this; first: the one at the top of what is seen. */
  reset(count, first = 0) {
    this.#goal = null;
    this.#begin(count);
    this.#scroller.scrollTop = this.#heights.offset(first);
    this.#draw();
  }

  /** Some rows are others now; what is at the top stays there. */
  remake(rows) {
    if (rows.length === 0) return;
    const { first } = this;
    const into = this.#scroller.scrollTop - this.#heights.offset(first);
    const isSeen = rows.some((i) => this.#rows.has(i));
    for (const i of rows) {
      this.#measured.delete(i);
      this.#heights.set(i, Math.round(this.#estimate(i)));
    }
    if (isSeen) this.#removeRows();
    else this.#place();
    this.#scroller.scrollTop = this.#heights.offset(first) + into;
    this.#draw();
  }

  /** Whether it is on its way somewhere by itself. */
  get isGoing() {
    return this.#goal !== null;
  }

  /** Whatever way it was on, somebody else scrolls now. */
  letGo() {
    this.#goal = null;
  }

  /** The element of a row; undefined while it is out of sight. */
  row(i) {
    return this.#rows.get(i);
  }

  /** Makes the rows in sight anew: something else is to be shown of each. */
  redraw() {
    this.#removeRows();
    this.#measured.clear();
    this.#draw();
  }

  isInView(i) {
    const top = this.#heights.offset(i) - this.#scroller.scrollTop;
    return top > -this.#heights.height(i) / 2 && top + this.#heights.height(i) / 2 < this.#scroller.clientHeight;
  }

  /** Brings a row to where share (0 to 1) of what is seen lies above its middle. */
  bring(i, share, smoothly = false) {
    const target = () => this.#heights.offset(i) + this.#heights.height(i) / 2 - share * this.#scroller.clientHeight;
    const near = Math.abs(target() - this.#scroller.scrollTop) < this.#scroller.clientHeight;
    this.#goal = null;
    if (!smoothly || !near) {
      this.#goTo(target);
      return;
    }
    const top = this.#within(target());
    if (Math.abs(top - this.#scroller.scrollTop) >= 2) this.#goal = top;
    this.#scroller.scrollTo({ top, behavior: 'smooth' });
  }

  /** Scrolls no further than a row needs to be seen. */
  reveal(i) {
    const { scrollTop, clientHeight } = this.#scroller;
    const top = () => this.#heights.offset(i);
    const bottomUp = () => top() + this.#heights.height(i) - clientHeight;
    if (top() < scrollTop) this.#goTo(() => top() - marginPx);
    else if (bottomUp() > scrollTop) this.#goTo(() => bottomUp() + marginPx);
  }

  /** How many rows fill what is seen. */
  get rowsInView() {
    const { scrollTop, clientHeight } = this.#scroller;
    return Math.max(1, this.#heights.at(scrollTop + clientHeight) - this.#heights.at(scrollTop));
  }

  /** The row at the top of what is seen. */
  get first() {
    return this.#heights.at(this.#scroller.scrollTop);
  }

  // The rows there may turn out higher or lower than was thought.
  #goTo(target) {
    for (let tries = 0; tries < 4; tries += 1) {
      const top = this.#within(target());
      if (Math.abs(top - this.#scroller.scrollTop) < 1) return;
      this.#scroller.scrollTo({ top, behavior: 'instant' });
      this.#draw();
    }
  }

  #within(top) {
    return Math.max(0, Math.min(this.#heights.total - this.#scroller.clientHeight, Math.round(top)));
  }

  #begin(count) {
    this.#width = this.#scroller.clientWidth;
    this.#heights = new Heights(Array.from({ length: count }, (_, i) => Math.round(this.#estimate(i))));
    this.#removeRows();
    this.#measured.clear();
    this.#size();
  }

  #removeRows() {
    this.#rows.clear();
    this.#space.replaceChildren();
  }

  // Another width: the row at the top stays there.
  #measureAnew() {
    if (this.count === 0) return;
    const { first } = this;
    this.#begin(this.count);
    this.#scroller.scrollTop = this.#heights.offset(first);
    this.#draw();
  }

  #draw() {
    const { clientHeight } = this.#scroller;
    if (clientHeight === 0) return;
    const anchor = this.first;
    const before = this.#heights.offset(anchor);
    const first = Math.max(0, anchor - spareRows);
    const last = Math.min(this.count - 1, this.#heights.at(this.#scroller.scrollTop + clientHeight) + spareRows);
    for (const [i, element] of this.#rows) {
      if (i >= first && i <= last) continue;
      element.remove();
      this.#rows.delete(i);
    }
    const added = [];
    for (let i = first; i <= last; i += 1) {
      if (!this.#rows.has(i)) added.push([i, this.#makeRow(i)]);
    }
    if (added.length === 0) return;
    this.#insert(added);
    this.#measure(added);
    this.#place();
    // What is seen stays where it is, also when rows above it are of another height than was thought.
    const moved = this.#heights.offset(anchor) - before;
    if (Math.abs(moved) >= 0.5) this.#scroller.scrollTop += moved;
  }

  #insert(added) {
    const topmost = Math.min(...this.#rows.keys()); // they stay in the order in which they are read
    this.#space.prepend(...added.filter(([i]) => i < topmost).map(([, element]) => element));
    this.#space.append(...added.filter(([i]) => i > topmost).map(([, element]) => element));
    for (const [i, element] of added) this.#rows.set(i, element);
  }

  #place() {
    for (const [i, element] of this.#rows) {
      const place = `translateY(${this.#heights.offset(i)}px)`;
      if (element.style.transform !== place) element.style.transform = place;
    }
    this.#size();
  }

  #size() {
    const height = `${Math.ceil(this.#heights.total)}px`;
    if (this.#space.style.height !== height) this.#space.style.height = height;
  }

  #measure(added) {
    const fresh = added.filter(([i]) => !this.#measured.has(i));
    // Whole pixels: no gap shows between two rows, and far down the engine would drop the rest anyway.
    const heights = fresh.map(([, element]) => Math.ceil(element.getBoundingClientRect().height));
    fresh.forEach(([i], k) => {
      this.#measured.add(i);
      if (heights[k] !== this.#heights.height(i)) this.#heights.set(i, heights[k]);
    });
  }
}
