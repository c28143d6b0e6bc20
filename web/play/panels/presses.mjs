// SPDX-License-Identifier: GPL-3.0-or-later

// The player takes a double-click above the bar's top for its own: it changes full screen. Where two quick presses are
// two presses, in a list or on a button over the picture, all of the page becomes the page's (see panels.css).

const mark = 'own-presses';

/** While the pointer is over the element, double-clicks belong to the page. */
export function keepPresses(element) {
  const { body } = element.ownerDocument;
  element.addEventListener('pointerenter', () => body.classList.add(mark));
  element.addEventListener('pointerleave', () => body.classList.remove(mark));
}

/** To be called when such an element goes: the pointer may never be seen to leave it. */
export function giveBackPresses(document) {
  document.body.classList.remove(mark);
}
