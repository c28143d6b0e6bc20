// SPDX-License-Identifier: GPL-3.0-or-later
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { CueIndex } from '../../web/play/lines/cueindex.mjs';
import { LineSteps } from '../../web/play/lines/linesteps.mjs';
import { Heights } from '../../web/play/panels/transcript/heights.mjs';
import { changedRows, isSameList, listedLines, rowNow } from '../../web/play/panels/transcript/listedlines.mjs';
import { LineSearch } from '../../web/play/panels/transcript/linesearch.mjs';
import { listText, pairLines } from '../../web/play/panels/transcript/pairs.mjs';
import { piecesOf } from '../../web/play/panels/transcript/pieces.mjs';
import { findIn, foldText } from '../../web/play/panels/transcript/search.mjs';

const cue = (startMs, endMs, ...lines) => ({ startMs, endMs, lines });
const beneath = (upper, lower) => pairLines(upper, lower).map((cues) => cues.map(({ lines }) => lines[0]).join('+'));

test('beneath a line lies what is said with it, each once where there is something for all', () => {
  const upper = [cue(0, 1000), cue(1000, 3000), cue(5000, 6000), cue(8000, 9000)];
  assert.deepEqual(beneath(upper, [cue(200, 1100, 'a'), cue(1300, 2000, 'b'), cue(2000, 3500, 'c'), cue(6000, 7000, 'd')]),
    ['a', 'b+c', '', '']);
  assert.deepEqual(beneath([cue(0, 1000), cue(1000, 2000), cue(2000, 9000)], [cue(0, 2100, 'long')]), ['long', 'long', ''],
    'one line that covers two is shown with both');
  assert.deepEqual(beneath([cue(0, 60_000, 'sign'), cue(1000, 2000), cue(50_000, 51_000)], [cue(50_100, 50_900, 'late')]),
    ['', '', 'late'], 'of two equal overlaps the line that began last has it');
  assert.deepEqual(beneath([], [cue(0, 1)]), []);
  const crowd = Array.from({ length: 20 }, (_, i) => cue(i, 5000, String(i)));
  assert.deepEqual(beneath([cue(0, 5000), cue(6000, 7000)], [...crowd, cue(6000, 7000, 'after')]),
    ['0+1+2+3+4+5+6+7', 'after'], 'no more than show');
});

test('in a list the lines of a cue run on, and two speakers stay apart', () => {
  assert.equal(listText(cue(0, 1, 'One', 'two')), 'One two');
  assert.equal(listText(cue(0, 1, '- One', '- Two')), '- One\n- Two');
});

test('a shift changes times and what lies beneath, and leaves the list the same', () => {
  const upper = [cue(0, 1000, 'a'), cue(2000, 3000, 'b')];
  const lower = [cue(0, 1000, 'x'), cue(2000, 3000, 'y')];
  const shifted = (cues) => cues.map((each) => cue(each.startMs + 2000, each.endMs + 2000, ...each.lines));
  const before = listedLines(upper, lower);
  const both = listedLines(shifted(upper), shifted(lower));
  assert.equal(isSameList(before, both), true);
  assert.deepEqual(changedRows(before, both), { texts: [], times: [0, 1] });
  const one = listedLines(upper, shifted(lower));
  assert.equal(isSameList(before, one), true);
  assert.deepEqual(one.map(({ under }) => under), ['', 'x']);
  assert.deepEqual(changedRows(before, one), { texts: [0, 1], times: [] });
  assert.equal(isSameList(before, listedLines(lower, upper)), false);
});

test('where lines are left out, a row is found again, or else what follows it', () => {
  const all = listedLines(['a', 'b', 'c', 'd'].map((text, i) => cue(i * 1000, i * 1000 + 500, text)), []);
  const some = [all[0], all[2]];
  assert.deepEqual([-1, 0, 1, 2, 3].map((row) => rowNow(all, some, row)), [-1, 0, 1, 1, 1]);
  assert.deepEqual([rowNow(some, all, 1), rowNow(all, [], 2)], [2, -1]);
});

test('text is found whatever its case and marks, and marked where it stands', () => {
  const marked = (text, wanted) => findIn(text, foldText(wanted)).map(({ start, end }) => text.slice(start, end));
  assert.deepEqual(marked('Le Café, un cafe\u0301!', 'CAFÉ'), ['Café', 'cafe\u0301']);
  assert.deepEqual(marked('Straße, STRASSE', 'strasse'), ['Straße', 'STRASSE']);
  assert.deepEqual(marked('ß', 's'), ['ß'], 'a letter goes whole, and once');
  assert.deepEqual(marked('I don’t', 'don\'t'), ['don’t']);
  assert.deepEqual(marked('Wait…', 't..'), ['t…']);
  assert.deepEqual(marked('one\ntwo', 'one two'), ['one\ntwo']);
  assert.deepEqual(marked('Ελλάς ΕΛΛΆΣ', 'ελλασ'), ['Ελλάς', 'ΕΛΛΆΣ']);
  assert.deepEqual(marked('anything', ''), []);
});

test('what is slanted over the picture is slanted in the list, found or not', () => {
  const whispered = { ...cue(0, 1000, 'Do you', 'hear me?'), italics: [{ line: 1, start: 0, end: 4 }] };
  const [{ text, slants, under, underSlants }] = listedLines([whispered], [cue(0, 500, 'Ja'), { ...whispered, endMs: 900 }]);
  const drawn = (...of) => piecesOf(...of).map(({ text: piece, isMarked, isItalic }) =>
    `${isMarked ? '!' : ''}${isItalic ? '/' : ''}${piece}`);
  assert.deepEqual(drawn(text, [], slants), ['Do you ', '/hear', ' me?']);
  assert.deepEqual(drawn(text, findIn(text, 'you he'), slants), ['Do ', '!you ', '!/he', '/ar', ' me?']);
  assert.deepEqual(drawn(under, [], underSlants), ['Ja\nDo you ', '/hear', ' me?']);
  assert.deepEqual(drawn('', [], []), []);
});

test('hits are gone through in order and round the end', () => {
  const search = new LineSearch();
  search.setTexts(['Sea', 'a boat', 'the SEÁ again', 'night']);
  search.setWanted(' sea ');
  assert.deepEqual(search.hits, [0, 2]);
  assert.deepEqual([[1, -1], [1, 0], [1, 2], [-1, 2], [-1, 0]].map(([step, from]) => search.next(step, from)),
    [0, 2, 0, 0, 2]);
  search.setTexts(['none']);
  assert.equal(search.next(1, 0), -1);
});

test('rows lie where the heights above them put them, also when heights turn out otherwise', () => {
  const plain = Array.from({ length: 1000 }, (_, i) => 20 + (i * 37) % 50);
  const heights = new Heights(plain);
  for (const [row, height] of [[0, 5], [999, 80], [512, 1], [511, 300], [0, 33]]) {
    heights.set(row, height);
    plain[row] = height;
  }
  let sum = 0;
  plain.forEach((height, row) => {
    assert.equal(heights.offset(row), sum);
    assert.equal(heights.at(sum), row);
    assert.equal(heights.at(sum + height - 1), row);
    sum += height;
  });
  assert.equal(heights.total, sum);
  assert.deepEqual([heights.at(-5), heights.at(sum + 5), new Heights([]).at(3), new Heights([]).total], [0, 999, 0, 0]);
});

test('a line that was jumped to is the current one from the whole second before it', () => {
  const steps = new LineSteps(new CueIndex([cue(1000, 3900), cue(4800, 6000)]));
  assert.equal(steps.goTo(1).startMs, 4800);
  assert.equal(steps.current(4000), 1);
  assert.equal(steps.goTo(7), null);
  assert.equal(steps.current(3000), 0);
});
