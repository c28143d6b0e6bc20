// SPDX-License-Identifier: GPL-3.0-or-later

/** A cue's lines as runs of upright and slanted text: [[{ text, isItalic }, ...], ...]. */
export function runsOf({ lines, italics = [] }) {
  return lines.map((line, i) => {
    const runs = [];
    let done = 0;
    const add = (end, isItalic) => {
      if (end > done) runs.push({ text: line.slice(done, end), isItalic });
      done = Math.max(done, end);
    };
    for (const range of italics.filter((each) => each.line === i).sort((a, b) => a.start - b.start)) {
      add(range.start, false);
      add(Math.min(range.end, line.length), true);
    }
    add(line.length, false);
    return runs;
  });
}
