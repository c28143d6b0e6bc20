// SPDX-License-Identifier: GPL-3.0-or-later

const wordsNamed = 8;

/**
 * What was met in a film. lineCount: of the upper track; words: as Api/MovieFile/Words, saved: as Api/Words of this
 * film, review: as Api/Review; each null when the service does not tell. knownPercent is null where there is nothing
 * to count, dueCount 0.
 */
export function summaryOf(lineCount, words, saved, review) {
  const savedWords = saved?.words.map(({ lemma }) => lemma) ?? [];
  const hasWords = Boolean(words?.subtitleId) && words.runningWords > 0;
  const isSaved = new Set(savedWords);
  const fresh = hasWords ? words.words.filter(({ isKnown, isName }) => !isKnown && !isName) : [];
  const worthy = hasWords ? words.learnFirst.map(({ lemma }) => lemma).filter((lemma) => !isSaved.has(lemma)) : [];
  return {
    lineCount,
    runningWords: hasWords ? words.runningWords : 0,
    knownPercent: hasWords ? words.knownPercent : null,
    newCount: fresh.length,
    newWords: worthy.slice(0, wordsNamed),
    savedCount: saved?.total ?? 0,
    savedWords: savedWords.slice(0, wordsNamed),
    dueCount: review?.dueCount ?? 0,
  };
}
