// SPDX-License-Identifier: GPL-3.0-or-later

import { create } from '../../shared/elements.mjs';

/** A part of the panel of lists, with its heading. */
export function listPart(document, title, ...children) {
  return create(document, 'section', {}, create(document, 'h3', { textContent: title }), ...children);
}

/** A text that stays the same is not told again. */
export function setText(element, text) {
  if (element.textContent !== text) element.textContent = text;
}
