// SPDX-License-Identifier: GPL-3.0-or-later

/** The classes of a flag. The player strips "flag", "small" and two blanks: only the code may remain. */
export function flagClass(code) {
  return `flag ${code} small`;
}
