// SPDX-License-Identifier: GPL-3.0-or-later
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { noticePlace } from '../../web/play/bar/noticeplace.mjs';
import { withoutRoom } from '../../web/play/bar/overflow.mjs';
import { SeekBar, said } from '../../web/play/bar/seekbar.mjs';
import { speechShares } from '../../web/play/bar/speechmap.mjs';
import { CueIndex } from '../../web/play/lines/cueindex.mjs';
import { FakeTimers } from './faketimers.mjs';

/** What of an element the bar needs without a page. */
class Part extends EventTarget {
  value = 0;
  clientWidth = 0;
  hidden = true;
  children = [];
  style = { setProperty() {} };
  setAttribute() {}
  getAttribute() { return ''; }
  blur() { this.tell('blur'); }
  tell(name) { this.dispatchEvent(new Event(name)); }
}

const cue = (startMs, endMs, ...lines) => ({ startMs, endMs, lines });

test('the strip tells each part\'s share of speech, and counts what is said at once only once', () => {
  const shares = speechShares([cue(500, 1500), cue(1000, 1250), cue(1400, 2000), cue(3500, 9000)], 4000, 4);
  assert.deepEqual([...shares], [0.5, 1, 0, 0.5]);
  const unbroken = Array.from({ length: 900 }, (_, i) => cue(i * 10, i * 10 + 10));
  assert.ok(speechShares(unbroken, 9000, 7).every((share) => Math.abs(share - 1) < 1e-4));
});

test('under the pointer is what is said in that second, also when it begins within it', () => {
  const index = new CueIndex([cue(1000, 2500, 'One', 'two'), cue(4700, 6000, 'Three')]);
  assert.deepEqual([0, 1000, 2000, 3000, 4000, 7000].map((ms) => said(index, ms)),
    ['', 'One two', 'One two', '', 'Three', '']);
});

test('a choice in the bar ends without a change, too, and seeks once', (context) => {
  const timers = new FakeTimers(context);
  const parts = { 'seek-preview': new Part(), seek: new Part() };
  const document = {
    getElementById: (id) => (parts[id] ??= new Part()),
    defaultView: { ResizeObserver: class { observe() {} } },
  };
  const film = { positionMs: 5300, durationMs: 60_000, sought: [], seekToSecond(second) { this.sought.push(second); } };
  const bar = new SeekBar(document, film, { get: () => ({ showsRemaining: false }) });
  bar.show();
  const { seek } = parts;
  const choose = (second, ...events) => {
    seek.value = second * 4;
    for (const name of ['input', ...events]) seek.tell(name);
    timers.pass(10);
    assert.equal(bar.busy, false, events.join());
    return film.sought.splice(0);
  };
  assert.deepEqual(choose(20, 'pointerup', 'change'), [20]);
  assert.deepEqual(choose(20, 'pointercancel'), [20]);
  assert.deepEqual(choose(30, 'blur'), [30]);
  assert.deepEqual(choose(5.5, 'blur'), [], 'where the film is');
});

test('without room the least needed goes first, and no more than must', () => {
  const items = [[150, Infinity], [110, 20], [84, 10], [38, 45], [38, 25]].map(([width, rank]) => ({ width, rank }));
  const gone = (room) => [...withoutRoom(items, room, 40)].sort();
  assert.deepEqual(gone(420), []);
  assert.deepEqual(gone(419), [2], 'the button that takes them up has room, too');
  assert.deepEqual(gone(375), [1, 2]);
  assert.deepEqual(gone(265), [1, 2, 4]);
  assert.deepEqual(gone(10), [1, 2, 3, 4], 'the first stays whatever happens');
});

test('a notice stands in the widest stretch that no card takes', () => {
  const card = (left, right, top = 10) => ({ left, right, top });
  assert.equal(noticePlace(1280, 55, []), null);
  assert.equal(noticePlace(1280, 55, [card(400, 800, 60)]), null, 'beneath it there is room for both');
  assert.deepEqual(noticePlace(1280, 55, [card(200, 600)]), { middle: 940, maxWidth: 652 });
  assert.deepEqual(noticePlace(1280, 55, [card(850, 1266), card(10, 370)]), { middle: 610, maxWidth: 452 });
  assert.deepEqual(noticePlace(1280, 55, [card(0, 900), card(100, 300)]), { middle: 1090, maxWidth: 352 },
    'one beneath the other');
  assert.equal(noticePlace(400, 55, [card(10, 390)]), null, 'over the card, rather than nowhere');
});
