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
  // The line tools. hardOnly: pauses only after lines with an unknown word; rounds, speeds, gapPercent (of the line's
  // length, to speak in) and thenNext belong to the drill; a silence is passed over when it is longer than ...Seconds;
  // told: the tools that have said what they do.
  practice: {
    autoPause: false, hardOnly: false, rounds: 3, speeds: [0.7, 0.85, 1], gapPercent: 120, thenNext: true,
    condensed: false, condensedSeconds: 4, fastGaps: false, fastGapSeconds: 3, fastGapSpeed: 2,
    told: [],
  },
};
