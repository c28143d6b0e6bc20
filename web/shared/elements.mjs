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

/** A button that leaves the focus where it is when it is clicked: the space bar goes on pausing the film. */
export function button(document, properties, pressed, ...children) {
  const element = create(document, 'button', { type: 'button', ...properties }, ...children);
  element.addEventListener('click', pressed);
  element.addEventListener('pointerdown', (event) => event.preventDefault());
  return element;
}
