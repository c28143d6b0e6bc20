// SPDX-License-Identifier: GPL-3.0-or-later

import { decimal } from '../../shared/texts.mjs';

/** "1.0×"; hundredths only where there are some: "0.85×". */
export function speedText(speed) {
  return `${decimal(speed, Number.isInteger(Math.round(speed * 100) / 10) ? 1 : 2)}×`;
}
