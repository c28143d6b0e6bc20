// SPDX-License-Identifier: GPL-3.0-or-later

/** "1.0×"; hundredths only where there are some: "0.85×". */
export function speedText(speed) {
  return `${speed.toFixed(Number.isInteger(Math.round(speed * 100) / 10) ? 1 : 2)}×`;
}
