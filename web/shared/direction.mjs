// SPDX-License-Identifier: GPL-3.0-or-later

// Parts of a sentence that have a direction of their own.

/** A name as people have given it: whatever direction it has, it keeps to itself. */
export const isolated = (text) => `\u2068${text}\u2069`;

/** A key's name: signs would be mirrored in a sentence from right to left. */
export const fromLeftToRight = (text) => `\u2066${text}\u2069`;
