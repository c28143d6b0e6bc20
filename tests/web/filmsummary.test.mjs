// SPDX-License-Identifier: GPL-3.0-or-later
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { summaryOf } from '../../web/play/end/filmsummary.mjs';

const word = (lemma, isKnown, isName = false) => ({ lemma, isKnown, isName });

test('the end of a film tells what was met, and names as worth learning what is not saved yet', () => {
  const words = {
    subtitleId: 3, runningWords: 120, knownPercent: 91,
    words: [word('the', true), word('harbour', false), word('lantern', false), word('Tom', false, true)],
    learnFirst: [{ lemma: 'harbour' }, { lemma: 'lantern' }],
  };
  const saved = { total: 11, words: [{ lemma: 'lantern' }, ...Array.from({ length: 9 }, (_, i) => ({ lemma: `w${i}` }))] };
  const summary = summaryOf(16, words, saved, { dueCount: 4 });
  assert.deepEqual([summary.newCount, summary.newWords, summary.savedCount, summary.dueCount], [2, ['harbour'], 11, 4]);
  assert.equal(summary.savedWords.length, 8);
});

test('a film without English subtitles, or a silent service, leaves nothing to count and breaks nothing', () => {
  const none = { subtitleId: null, runningWords: 0, knownPercent: null, words: [], learnFirst: [] };
  for (const words of [none, null]) {
    const summary = summaryOf(0, words, null, null);
    assert.deepEqual([summary.knownPercent, summary.newCount, summary.savedCount, summary.dueCount], [null, 0, 0, 0]);
  }
});
