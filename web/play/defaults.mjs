// SPDX-License-Identifier: GPL-3.0-or-later

/** What holds in the player page until the learner sets it otherwise; see Preferences. */
export const playDefaults = {
  // Own keys by action: { togglePlay: ['space'] }.
  keys: {},
  // How the upper and the lower line look. show: always, pause, hover, key, never.
  learned: { show: 'always', sizePercent: 100, font: 'sans', edge: 'outline' },
  native: { show: 'always', sizePercent: 100, font: 'sans', edge: 'outline' },
  // Of both: how far above the bar (per cent of the height), whether words are coloured by status.
  lines: { raisedPercent: 0, colours: true, arrowsStepLines: false, pausesOnHover: false },
  // The bar: whether the time that is left is shown in place of the length.
  bar: { showsRemaining: false },
};
