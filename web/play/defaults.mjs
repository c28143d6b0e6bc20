// SPDX-License-Identifier: GPL-3.0-or-later

import { interfaceDefaults } from '../shared/preferences.mjs';

/** What holds in the player page until the learner sets it otherwise; see Preferences and looks. */
export const playDefaults = {
  // Own keys by action: { togglePlay: ['space'] }.
  keys: {},
  // shownAs: how a line was shown before it was hidden, empty before that.
  learned: { show: 'always', shownAs: '', sizePercent: 100, font: 'sans', edge: 'outline', colour: 'white', place: 'below' },
  native: { show: 'always', shownAs: '', sizePercent: 100, font: 'sans', edge: 'outline', colour: 'warm', place: 'below' },
  // Of both: how far above the bar (per cent of the height), whether words are coloured by status.
  lines: { raisedPercent: 0, colours: true, arrowsStepLines: false, pausesOnHover: false },
  interface: interfaceDefaults,
  // The bar: whether the time that is left is shown in place of the length.
  bar: { showsRemaining: false },
  // The line tools. hardOnly: pauses only after lines with an unknown word; rounds, speeds, gapPercent (of the line's
  // length, to speak in) and thenNext belong to the drill; a silence is passed over when it is longer than ...Seconds;
  // told: the tools that have said what they do.
  practice: {
    autoPause: false, hardOnly: false, rounds: 3, speeds: [0.7, 0.85, 1], gapPercent: 120, thenNext: true,
    condensed: false, condensedSeconds: 4, fastGaps: false, fastGapSeconds: 3, fastGapSpeed: 2,
    told: [],
  },
};
