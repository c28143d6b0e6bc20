// SPDX-License-Identifier: GPL-3.0-or-later

// The text of the cues that show, cut into words. Places are counted in UTF-16 units of the whole text, whose lines
// are parted by line breaks, so that they mean the same to the dictionary.

import { runsOf } from './runs.mjs';

// Letters with what joins them within a word: "don't", "well-known", "goin'".
const wordPattern = /[\p{L}\p{M}\p{N}]+(?:['’ʼ‑-][\p{L}\p{M}\p{N}]+)*(?:(?<=\p{L})['’](?![\p{L}\p{N}]))?/gu;

/** A word as the service writes it in its lists: in lower case with plain apostrophes. */
export function formOf(word) {
  return word.toLowerCase().replace(/[’ʼ]/g, "'").replace(/‑/g, '-');
}

/** The words of a text: [{ start, end, text }]. What has no letter is none. */
export function wordsOf(text) {
  const words = [];
  for (const match of text.matchAll(wordPattern)) {
    if (!/\p{L}/u.test(match[0])) continue;
    // A quotation mark behind a word looks like its apostrophe; only dropped letters keep theirs.
    const word = /['’]$/.test(match[0]) && !/[a-z]{2}in['’]$/i.test(match[0]) ? match[0].slice(0, -1) : match[0];
    words.push({ start: match.index, end: match.index + word.length, text: word });
  }
  return words;
}

// Of upright and slanted runs, what lies between two places of their line.
function cut(runs, from, to) {
  const pieces = [];
  let at = 0;
  for (const { text, isItalic } of runs) {
    const piece = text.slice(Math.max(0, from - at), Math.max(0, to - at));
    if (piece) pieces.push({ text: piece, isItalic });
    at += text.length;
  }
  return pieces;
}

/**
 * What shows, ready to be drawn: { text, words, lines }; each line is a list of parts { word, pieces }, word the place
 * in words or null, pieces the runs of text.
 */
export function lineText(cues) {
  const words = [];
  const lines = [];
  let start = 0; // of the line within the whole text
  for (const runs of cues.flatMap(runsOf)) {
    const text = runs.map((run) => run.text).join('');
    const parts = [];
    let done = 0;
    const add = (end, word) => {
      const pieces = cut(runs, done, end);
      if (pieces.length > 0) parts.push({ word, pieces });
      done = end;
    };
    for (const word of wordsOf(text)) {
      add(word.start, null);
      words.push({ start: start + word.start, end: start + word.end, text: word.text });
      add(word.end, words.length - 1);
    }
    add(text.length, null);
    lines.push(parts);
    start += text.length + 1;
  }
  return { text: cues.flatMap((cue) => cue.lines).join('\n'), words, lines };
}

const longestText = 900; // the dictionary takes a thousand
const sentenceEnd = /[.!?…]["'”’)\]]*$/;

/**
 * The text around a line, as far as its sentence goes beyond it: { text, offset }, offset where the line begins in it.
 * before, after: texts of the neighbouring lines, or empty. Of a line that is too long itself, what lies around the word
 * from start to end in it; the offset is negative then.
 */
export function sentenceAround(text, before, after, start = 0, end = start) {
  if (text.length > longestText) return aroundWord(text, start, end);
  const opens = before && !sentenceEnd.test(before.trim());
  const goesOn = after && !sentenceEnd.test(text.trim());
  const front = opens && before.length + text.length < longestText ? `${before}\n` : '';
  const back = goesOn && front.length + text.length + after.length < longestText ? `\n${after}` : '';
  return { text: front + text + back, offset: front.length };
}

function aroundWord(text, start, end) {
  const middle = end - start < longestText ? (start + end) / 2 : start + longestText / 2;
  const first = Math.min(text.length - longestText, Math.max(0, Math.round(middle - longestText / 2)));
  // A character of two units is left out as a whole.
  const from = first + (isInCharacter(text, first) ? 1 : 0);
  const last = first + longestText;
  return { text: text.slice(from, last - (isInCharacter(text, last) ? 1 : 0)), offset: -from || 0 };
}

const isInCharacter = (text, place) => text.codePointAt(place - 1) > 0xffff;
