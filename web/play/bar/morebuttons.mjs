// SPDX-License-Identifier: GPL-3.0-or-later

import { withoutRoom } from './overflow.mjs';
import { Popup } from './popup.mjs';

/**
 * What has no room in the bar lies behind the button "more". Items carry data-rank (the lowest go first) or are in
 * #panel-buttons; they stay the same elements, wherever they are.
 */
export class MoreButtons {
  #row;
  #more;
  #card;
  #popup;
  #homes = new Map(); // item -> the mark where it belongs

  /** closed(): called when the card closes. */
  constructor(document, closed) {
    this.#row = document.getElementById('button-row');
    this.#more = document.getElementById('more');
    this.#card = document.getElementById('more-card');
    this.#popup = new Popup(this.#more, this.#card, closed);
    this.#card.addEventListener('click', (event) => {
      // What opens something else is done with; what is turned, like the speed, is turned again.
      if (event.target.closest('#more-card > button')) this.close();
    });
    new document.defaultView.ResizeObserver(() => this.fit()).observe(this.#row);
  }

  get open() {
    return this.#popup.open;
  }

  toggle() {
    if (this.open) this.close();
    else this.#popup.show();
  }

  close() {
    this.#popup.close();
  }

  /** To be called when items have come, gone or changed their width; the row's own width is watched. */
  fit() {
    if (this.#row.clientWidth === 0) return;
    const focused = this.#row.ownerDocument.activeElement;
    for (const [item, home] of this.#homes) home.replaceWith(item);
    this.#homes.clear();
    this.#more.hidden = false; // to be measured
    const items = [...this.#row.querySelectorAll('[data-rank], #panel-buttons > *, #transport')]
      .filter((item) => !this.#card.contains(item) && item.offsetWidth > 0)
      .map((item) => ({ item, width: widthOf(item), rank: rankOf(item) }));
    const gone = withoutRoom(items, this.#row.clientWidth, widthOf(this.#more));
    for (const place of gone) this.#hide(items[place].item);
    this.#more.hidden = gone.size === 0;
    if (gone.size === 0) this.close();
    if (focused && focused !== this.#row.ownerDocument.activeElement && focused.isConnected) focused.focus();
  }

  #hide(item) {
    const home = item.ownerDocument.createComment('');
    item.replaceWith(home);
    this.#homes.set(item, home);
    this.#card.append(item);
  }
}

function widthOf(element) {
  const { marginLeft, marginRight } = getComputedStyle(element);
  return element.getBoundingClientRect().width + Number.parseFloat(marginLeft) + Number.parseFloat(marginRight) + 2;
}

const rankOf = ({ id, dataset }) => (id === 'transport' ? Infinity : Number(dataset.rank ?? 50));
