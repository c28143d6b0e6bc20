// SPDX-License-Identifier: GPL-3.0-or-later

// The player takes a double-click above the bar's top for its own: it changes full screen. Where two quick presses are
// two presses, in a list or on a button over the picture, all of the page becomes the page's (see panels.css).

const mark = 'own-presses';

// What has gone may count as under the pointer until the pointer moves.
const isSeen = (element) => element.getClientRects().length > 0;

function update(document) {
  const under = [...document.querySelectorAll('[data-own-presses]:hover')];
  document.body.classList.toggle(mark, under.some(isSeen));
}

// Longer than lies between the two presses of a double-click: the second one is the page's, too, where the first has
// closed what was under it.
const doubleClickMs = 450;

/** While the pointer is over the element, double-clicks belong to the page. */
export function keepPresses(element) {
  element.dataset.ownPresses = '';
  element.addEventListener('pointerenter', () => update(element.ownerDocument));
  element.addEventListener('pointerleave', () => giveBackPresses(element.ownerDocument));
}

/** To be called when such an element has gone: the pointer may never be seen to leave it. */
export function giveBackPresses(document) {
  setTimeout(() => update(document), doubleClickMs);
}
