// SPDX-License-Identifier: GPL-3.0-or-later
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { Hold } from '../../web/play/film/hold.mjs';

function film({ playing = true, ended = false } = {}) {
  const made = { playing, ended, setPlaying(on) { made.playing = on; made.hold.update(); } };
  made.hold = new Hold(made);
  return made;
}

test('a held film goes on, unless it stood before or somebody else has had it meanwhile', () => {
  const held = film();
  held.hold.take();
  assert.equal(held.playing, false);
  held.hold.letGo();
  assert.equal(held.playing, true);

  const stood = film({ playing: false });
  stood.hold.take();
  stood.hold.letGo();
  assert.equal(stood.playing, false);

  const paused = film();
  paused.hold.take();
  paused.setPlaying(true);
  paused.setPlaying(false); // by the learner
  paused.hold.letGo();
  assert.equal(paused.playing, false);

  const over = film();
  over.hold.take();
  over.ended = true;
  over.hold.update();
  over.hold.letGo();
  assert.equal(over.playing, false, 'it would begin anew');
});
