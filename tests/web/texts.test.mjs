// SPDX-License-Identifier: GPL-3.0-or-later

import assert from 'node:assert/strict';
import { readFileSync, readdirSync } from 'node:fs';
import { test } from 'node:test';
import { speedText } from '../../web/play/bar/speedtext.mjs';
import { interfaceLanguages, languageFor, speak, spokenLanguage, t } from '../../web/shared/texts.mjs';
import english from '../../web/texts/en.mjs';

const web = new URL('../../web/', import.meta.url);
const sources = readdirSync(web, { recursive: true }).filter((name) => /\.(mjs|html)$/.test(name) && !name.startsWith('texts/'));
const valuesIn = (text) => [...text.matchAll(/\{(\w+)\}/g)].map(([, name]) => name).sort();
const forms = (text) => (typeof text === 'string' ? { other: text } : text);

test('every language has the texts of English, with the same values and the forms that its numbers need', async () => {
  for (const code of interfaceLanguages.values()) {
    const texts = (await import(new URL(`texts/${code}.mjs`, web))).default;
    assert.deepEqual(Object.keys(texts).sort(), Object.keys(english).sort(), code);
    const needed = new Intl.PluralRules(code).resolvedOptions().pluralCategories;
    for (const [key, text] of Object.entries(texts)) {
      assert.equal(typeof text, typeof english[key], `${code}: ${key}`);
      if (typeof text !== 'string') assert.deepEqual(needed.filter((form) => !(form in text)), [], `${code}: ${key}`);
      for (const form of Object.values(forms(text))) {
        assert.notEqual(form.trim(), '', `${code}: ${key}`);
        const spare = new Set(valuesIn(forms(english[key]).other));
        assert.deepEqual(valuesIn(form).filter((name) => !spare.has(name)), [], `${code}: ${key}`);
      }
      assert.deepEqual(valuesIn(forms(text).other), valuesIn(forms(english[key]).other), `${code}: ${key}`);
    }
  }
});

/** The keys in a source's calls of t(): all strings that could be one, so that choices between two are found. */
function keysIn(source) {
  const calls = [...source.matchAll(/(?<![\w.])t\((?:[^()]|\((?:[^()]|\([^()]*\))*\))*\)/g)].map(([call]) => call);
  return calls.flatMap((call) => [...call.matchAll(/'([a-z]+(?:\.[a-zA-Z]+)+)'/g)].map(([, key]) => key));
}

test('keys are found in plain calls, in choices and in calls within calls', () => {
  const source = `t('a.b'); t(is(x) ? 'a.c' : 'a.d', { n: f(g(1)) }); set('no.key'); t(\`a.\${x}\`);
    t('a.e', { y: t('a.f') })`;
  assert.deepEqual(keysIn(source), ['a.b', 'a.c', 'a.d', 'a.e', 'a.f']);
});

test('every text that the pages name exists, and every text is named', () => {
  const named = new Set();
  const all = sources.map((name) => readFileSync(new URL(name, web), 'utf8')).join('\n');
  for (const [, key] of all.matchAll(/data-(?:text|label|title|placeholder)="([^"]+)"/g)) named.add(key);
  const inCalls = sources.filter((name) => name.endsWith('.mjs')).flatMap((name) => (
    keysIn(readFileSync(new URL(name, web), 'utf8'))));
  assert.ok(inCalls.length > 200, `${inCalls.length} calls`);
  for (const key of [...named, ...inCalls]) assert.ok(key in english, key);
  // Keys made of parts, as `key.${action}`, name all that begin so.
  const beginnings = [...all.matchAll(/`([a-zA-Z.]+\.)\$\{/g)].map(([, beginning]) => beginning);
  for (const beginning of beginnings) {
    if (!/^[a-z]+\./.test(beginning)) continue;
    assert.ok(Object.keys(english).some((key) => key.startsWith(beginning)), `nothing begins with ${beginning}`);
  }
  for (const key of Object.keys(english)) {
    assert.ok(named.has(key) || all.includes(`'${key}'`) || beginnings.some((each) => key.startsWith(each)), `${key} is not used`);
  }
});

test('a text takes its values, its number and its form', async () => {
  assert.throws(() => t('no.such.text'), /no\.such\.text/);
  assert.equal(t('words.removed', { word: 'sea {count}' }), '“sea {count}” is removed.', 'a value is no text');
  assert.deepEqual([0, 1, 12_345].map((count) => t('words.count', { count })), ['0 words', '1 word', '12,345 words']);
  await speak('rus');
  const counts = [1, 3, 5, 21].map((count) => t('words.count', { count }));
  assert.equal(new Set(counts.map((text) => text.replace(/\d+/, ''))).size, 3, counts.join());
  assert.equal(counts[0].replace('1', ''), counts[3].replace('21', ''));
  await speak('ara');
  assert.match(t('words.count', { count: 12_345 }), /12[,.]345/, 'with the digits of times and speeds');
  await speak('deu');
  assert.match(t('words.count', { count: 12_345 }), /^12\.345 /);
  assert.deepEqual([0.85, 1].map(speedText), ['0,85×', '1,0×']);
  await speak('kor');
  assert.deepEqual([spokenLanguage(), t('home.words')], ['en', 'Words']);
});

test('of languages asked for one after the other the last one is spoken', async () => {
  const early = speak('pol');
  await speak('eng');
  await early;
  assert.deepEqual([spokenLanguage(), t('home.words')], ['en', 'Words']);
});

test('the pages speak the desktop’s language until the learner has chosen one, and then the learner’s', () => {
  assert.equal(languageFor({ language: '', follows: false }, 'fra', 'en-US'), 'en');
  assert.equal(languageFor({ language: '', follows: true }, 'fra', 'en-US'), 'fra');
  assert.equal(languageFor({ language: 'de', follows: true }, 'fra', 'en-US'), 'de');
});
