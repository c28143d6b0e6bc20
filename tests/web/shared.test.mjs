// SPDX-License-Identifier: GPL-3.0-or-later
import assert from 'node:assert/strict';
import { existsSync, readFileSync, readdirSync } from 'node:fs';
import { test } from 'node:test';

import { flagClass } from '../../web/home/frame/flagclass.mjs';
import { audioTrackName } from '../../web/play/bar/audiomenu.mjs';
import { waitingText } from '../../web/play/bar/notice.mjs';
import { ServiceApi } from '../../web/shared/api.mjs';
import { Preferences } from '../../web/shared/preferences.mjs';
import { PlayerBridge, requestUrl } from '../../web/shared/bridge.mjs';
import { FakeTimers } from './faketimers.mjs';

const web = new URL('../../web/', import.meta.url);

/** The two calls of jQuery's events that the bridge needs. */
class Events {
  #handlers = new Map();
  one(name, handler) { this.#handlers.set(name, handler); }
  off(name) { this.#handlers.delete(name); }
  trigger(name, value) {
    const handler = this.#handlers.get(name);
    this.#handlers.delete(name);
    handler?.({ type: name }, value);
  }
  get waiting() { return this.#handlers.size; }
}

test('commands and requests are written as the player reads them', () => {
  assert.equal(requestUrl('Execute', 'Play'), 'app:///Execute/Play');
  assert.equal(requestUrl('Execute', 'SeekTo', { position: 42 }), 'app:///Execute/SeekTo?position=42');
});

test('each reply reaches the request that it answers, also false and 0', async () => {
  const events = new Events();
  const urls = [];
  const bridge = new PlayerBridge((url) => urls.push(url), events);
  const full = bridge.request('IsFullscreen');
  const volume = bridge.request('Volume');
  const guids = urls.map((url) => new URL(url).searchParams.get('guid'));
  assert.notEqual(guids[0], guids[1]);
  events.trigger(`response:${guids[1]}`, 0);
  events.trigger(`response:${guids[0]}`, false);
  assert.equal(await full, false);
  assert.equal(await volume, 0);
});

test('a request that nobody answers ends with nothing and leaves nothing behind', async (context) => {
  const timers = new FakeTimers(context);
  const events = new Events();
  const reply = new PlayerBridge(() => {}, events).request('AudioInfo', 1000);
  timers.pass(1000);
  assert.equal(await reply, undefined);
  assert.equal(events.waiting, 0);
});

test('a failure says what is known of it, else what the service says', async (context) => {
  const api = new ServiceApi(new URL('http://127.0.0.1:1/t/Api/'));
  const asked = [];
  const replies = [
    '{"error":{"code":"diskFull","message":"No room."}}', '{"error":{"code":"__proto__","message":"A strange one."}}', 'no JSON',
  ];
  context.mock.method(globalThis, 'fetch', async (url) => {
    asked.push(String(url));
    const reply = replies.shift();
    if (!reply) throw new TypeError('Failed to fetch');
    return new Response(reply, { status: 507 });
  });
  await assert.rejects(api.filmLines(7), /The disk is full/);
  assert.deepEqual(asked, ['http://127.0.0.1:1/t/Api/MovieFile/Lines?videoId=7']);
  await assert.rejects(api.filmLines(7), /A strange one/);
  await assert.rejects(api.filmLines(7), /507/);
  await assert.rejects(api.filmLines(7), /does not answer/);
});

test('what changes something is waited for to its end, well or ill, and what only asks is not', async (context) => {
  const api = new ServiceApi(new URL('http://127.0.0.1:1/t/Api/'));
  const open = [];
  context.mock.method(globalThis, 'fetch', (url) => new Promise((settle, fail) => { open.push({ url, settle, fail }); }));
  let isSettled = false;
  const settled = () => api.settled().then(() => { isSettled = true; });
  const turn = () => new Promise((settle) => { setImmediate(settle); });
  api.filmLines(7).catch(() => {});
  await settled();
  assert.ok(isSettled);

  isSettled = false;
  const [ill, well] = [api.importWords('sea'), api.changeSettings({ volumePercent: 50 })];
  ill.catch(() => {});
  settled();
  open.find(({ url }) => String(url).includes('Import')).fail(new TypeError('Failed to fetch'));
  await turn();
  assert.equal(isSettled, false);
  const last = api.undoGrade(); // begun while it waits
  open.find(({ url }) => String(url).endsWith('Settings')).settle(new Response('{}'));
  await turn();
  assert.equal(isSettled, false);
  open.at(-1).settle(new Response('{}'));
  await Promise.all([well, last]);
  await turn();
  assert.ok(isSettled);
});

test('stripping the flag\'s classes as the player does leaves the bare code', () => {
  const stripped = flagClass('fra').replace('flag', '').replace('small', '').replace(' ', '').replace(' ', '');
  assert.equal(stripped, 'fra');
});

test('every language on offer has its flag, as a file and in the style', () => {
  const source = readFileSync(new URL('../service/Languages.cpp', web), 'utf8');
  const offered = [...source.matchAll(/L\("(\w{3})"\), L\("\w{3}"\), L\("\w\w"\), u"[^"]+", L\("\w+"\), true\}/g)];
  assert.ok(offered.length >= 16);
  const style = readFileSync(new URL('shared/flags.css', web), 'utf8');
  for (const [, code] of offered) {
    assert.ok(existsSync(new URL(`shared/flags/${code}.svg`, web)), code);
    assert.ok(style.includes(`.flag.${code} {`), code);
  }
});

test('sound tracks have a name in any case', () => {
  assert.equal(audioTrackName({ title: '', languageName: 'English' }, 1), 'English');
  assert.equal(audioTrackName({ title: 'Commentary', languageName: 'English' }, 2), 'English (Commentary)');
  assert.equal(audioTrackName({ title: 'English 5.1', languageName: 'English' }, 2), 'English 5.1');
  assert.equal(audioTrackName({ title: '', languageName: '' }, 3), 'Track 3');
});

test('a film that stays silent is called lost, with what can be done', () => {
  assert.equal(waitingText(4000), 'Waiting for the film…');
  assert.match(waitingText(20_000), /open another film/);
});

test('what is set in the pages is newer than a reply that was under way, and is saved until it is acknowledged', async (context) => {
  context.mock.timers.enable({ apis: ['setTimeout'] });
  const settle = async () => { for (let i = 0; i < 20; i += 1) await null; };
  const saved = [];
  let answer;
  let refuses = true;
  const api = {
    pageSettings: () => new Promise((resolve) => { answer = resolve; }),
    changePageSettings: async (changes) => {
      if (refuses) throw new Error('The disk is full.');
      saved.push(changes);
    },
  };
  const preferences = new Preferences(api, { interface: { language: '', follows: false }, keys: {} });
  let told = 0;
  preferences.onChange(() => { throw new Error('a part that stumbles'); });
  preferences.onChange(() => { told += 1; });
  context.mock.method(console, 'error', () => {});
  context.mock.method(console, 'warn', () => {});
  const loaded = preferences.load();
  preferences.change('interface', { language: 'de' });
  context.mock.timers.tick(400);
  await settle();
  const kept = JSON.parse('{"interface":{"language":"fr","follows":"yes","more":1},"keys":{"a":["b"]},"__proto__":{"x":1}}');
  answer(kept);
  await loaded;
  assert.deepEqual(preferences.get('interface'), { language: 'de', follows: false });
  assert.deepEqual(preferences.get('keys'), { a: ['b'] });
  refuses = false;
  context.mock.timers.tick(5000);
  await settle();
  assert.deepEqual(saved, [{ interface: { language: 'de', follows: false } }]);
  const again = preferences.load();
  answer(kept);
  await again;
  assert.deepEqual(preferences.get('interface'), { language: 'fr', follows: false }); // of what was kept only what fits
  assert.equal(told, 3);
});

test('all that one module takes from another is there', () => {
  const modules = readdirSync(web, { recursive: true }).filter((name) => name.endsWith('.mjs'));
  assert.ok(modules.length > 100);
  for (const name of modules) {
    const source = readFileSync(new URL(name, web), 'utf8');
    for (const [, names, from] of source.matchAll(/^import \{([^}]+)\} from '(\.[^']+)';$/gm)) {
      const file = new URL(from, new URL(name, web));
      const given = existsSync(file) ? readFileSync(file, 'utf8') : '';
      for (const each of names.split(',').map((part) => part.trim().split(' as ')[0]).filter(Boolean)) {
        const isGiven = new RegExp(`^export (async )?(class|const|function\\*?|let) ${each}\\b|^export \\{[^}]*\\b${each}\\b`, 'm').test(given);
        assert.ok(isGiven, `${name}: ${each} of ${from}`);
      }
    }
  }
});
