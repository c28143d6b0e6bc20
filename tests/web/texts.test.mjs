// SPDX-License-Identifier: GPL-3.0-or-later

import assert from 'node:assert/strict';
import { readFileSync, readdirSync } from 'node:fs';
import { test } from 'node:test';
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

test('every text that the pages name exists, and every text is named', () => {
  const named = new Set();
  const all = sources.map((name) => readFileSync(new URL(name, web), 'utf8')).join('\n');
  for (const [, key] of all.matchAll(/data-(?:text|label|title|placeholder)="([^"]+)"/g)) named.add(key);
  for (const key of named) assert.ok(key in english, key);
  // Keys made of parts, as `key.${action}`, name all that begin so.
  const beginnings = [...all.matchAll(/`([a-zA-Z.]+\.)\$\{/g)].map(([, beginning]) => beginning);
  for (const key of Object.keys(english)) {
    assert.ok(named.has(key) || all.includes(`'${key}'`) || beginnings.some((each) => key.startsWith(each)), `${key} is not used`);
  }
});

test('a text takes its values, its number and its form', async () => {
  assert.throws(() => t('no.such.text'));
  await speak('kor');
  assert.equal(spokenLanguage(), 'en');
});

test('the pages speak the desktop’s language until the learner has chosen one, and then the learner’s', () => {
  assert.equal(languageFor({ language: '', follows: false }, 'fra', 'en-US'), 'en');
  assert.equal(languageFor({ language: '', follows: true }, 'fra', 'en-US'), 'fra');
  assert.equal(languageFor({ language: 'de', follows: true }, 'fra', 'en-US'), 'de');
});
