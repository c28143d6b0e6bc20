// SPDX-License-Identifier: GPL-3.0-or-later

/** A new element: its properties, and what it holds (elements or text). Text stays text, whatever is in it. */
export function create(document, name, properties = {}, ...children) {
  const element = document.createElement(name);
  for (const [key, value] of Object.entries(properties)) {
    if (key in element) element[key] = value;
    else element.setAttribute(key, value);
  }
  element.append(...children);
  return element;
}

const isShown = (element) => element.isConnected && element.getClientRects().length > 0;

/** Hides or shows an element; where the keyboard was in what goes, it is in other then. */
export function setHidden(element, isHidden, other) {
  if (isHidden && element.contains(element.ownerDocument.activeElement)) other.focus();
  element.hidden = isHidden;
}

/** Carries out what draws a part anew. Where the keyboard was in it, it is there again, by its id, or else in all of it. */
export function keepFocus(part, draw) {
  const document = part.ownerDocument;
  const focused = document.activeElement;
  const hadFocus = part.contains(focused);
  draw();
  if (!hadFocus || (document.activeElement !== document.body && isShown(document.activeElement))) return;
  const again = focused.id ? document.getElementById(focused.id) : null;
  (again && isShown(again) && !again.disabled ? again : part).focus();
}

/** A button that leaves the focus where it is when it is clicked: the space bar goes on pausing the film. */
export function button(document, properties, pressed, ...children) {
  const element = create(document, 'button', { type: 'button', ...properties }, ...children);
  element.addEventListener('click', pressed);
  element.addEventListener('pointerdown', (event) => event.preventDefault());
  return element;
}
