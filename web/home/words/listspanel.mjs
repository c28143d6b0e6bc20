// SPDX-License-Identifier: GPL-3.0-or-later

import { button, create } from '../../shared/elements.mjs';
import { t } from '../../shared/texts.mjs';

const pollMs = 500;
const ankiPollMs = 3000;

/** The panel in which words leave the program and come into it: files, Anki, lists to paste, the learner's own file. */
export class ListsPanel {
  #document;
  #api;
  #tools;
  #dialog;
  #parts = {};
  #timers = new Set();
  #package = { stage: 'none' };

  /** tools: { imported() when words have come }. */
  constructor(document, api, tools) {
    this.#document = document;
    this.#api = api;
    this.#tools = tools;
    this.#dialog = document.getElementById('lists');
    this.#dialog.addEventListener('close', () => this.#stopWatching());
    this.#dialog.addEventListener('click', (event) => {
      if (event.target === this.#dialog) this.#dialog.close(); // beside it
    });
  }

  async open() {
    this.#build();
    this.#dialog.showModal();
    this.#watchPackage();
    this.#watchAnki();
    const settings = await this.#api.settings().catch(() => null);
    if (!settings || !this.#dialog.open) return;
    this.#parts.sends.checked = settings.sendsToAnki;
    this.#parts.port.value = settings.ankiConnectPort;
    this.#parts.key.value = settings.ankiConnectKey;
    this.#parts.ankiMore.hidden = !settings.sendsToAnki;
  }

  #make(...rest) {
    return create(this.#document, ...rest);
  }

  #button(text, pressed, className = 'field') {
    return button(this.#document, { className }, pressed, text);
  }

  #download(text, href) {
    return this.#make('a', { className: 'field', href, download: '', textContent: text });
  }

  #part(title, ...children) {
    return this.#make('section', {}, this.#make('h3', { textContent: title }), ...children);
  }

  #build() {
    const closing = { className: 'close', ariaLabel: t('close') };
    const title = { id: 'lists-title', tabIndex: -1, autofocus: true, textContent: t('lists.title') };
    this.#dialog.replaceChildren(
      this.#make('header', {}, this.#make('h2', title), button(this.#document, closing, () => this.#dialog.close())),
      this.#make('div', { className: 'parts', tabIndex: 0, role: 'group', 'aria-labelledby': 'lists-title' },
        this.#filePart(), this.#packagePart(), this.#ankiPart(), this.#importPart(), this.#learnerPart()));
  }

  #filePart() {
    return this.#part(t('lists.files'), this.#make('p', { textContent: t('lists.filesText') }),
      this.#make('div', { className: 'buttons' },
        this.#download(t('lists.csv'), this.#api.wordListAddress('csv')),
        this.#download(t('lists.tsv'), this.#api.wordListAddress('tsv'))));
  }

  #packagePart() {
    const parts = this.#parts;
    parts.clips = this.#make('input', { type: 'checkbox', checked: true });
    parts.clipsLabel = this.#make('label', { className: 'switch' },
      parts.clips, this.#make('span', { textContent: t('lists.clips') }));
    parts.make = this.#button(t('lists.makePackage'), () => this.#makePackage());
    parts.stop = this.#button(t('lists.stop'), () => this.#endPackage());
    parts.get = this.#download(t('lists.getPackage'), this.#api.ankiPackageAddress);
    parts.progress = this.#make('progress', { max: 100, value: 0, ariaLabel: t('lists.package') });
    for (const each of [parts.stop, parts.progress, parts.get]) each.hidden = true; // until it is known how it stands
    parts.packageState = this.#make('p', { className: 'state', role: 'status' });
    return this.#part(t('lists.package'), this.#make('p', { textContent: t('lists.packageText') }), parts.clipsLabel,
      this.#make('div', { className: 'buttons' }, parts.make, parts.progress, parts.stop, parts.get),
      parts.packageState);
  }

  async #makePackage() {
    await this.#packageIs(this.#api.beginAnkiPackage(this.#parts.clips.checked));
    this.#watchPackage();
  }

  #endPackage() {
    return this.#packageIs(this.#api.endAnkiPackage());
  }

  async #watchPackage() {
    await this.#packageIs(this.#api.ankiPackage());
    if (this.#package.stage === 'running') this.#later(pollMs, () => this.#watchPackage());
  }

  async #packageIs(reply) {
    const parts = this.#parts;
    let problem = '';
    try {
      this.#package = await reply;
    } catch (error) {
      problem = error.message;
    }
    const { stage, percent, wordCount, clipCount, bytes } = this.#package;
    const isRunning = stage === 'running';
    parts.make.hidden = isRunning;
    parts.stop.hidden = !isRunning;
    parts.progress.hidden = !isRunning;
    parts.progress.value = percent ?? 0;
    parts.clipsLabel.hidden = isRunning;
    parts.get.hidden = stage !== 'done';
    const texts = {
      running: () => t('lists.packageRunning', { percent }),
      done: () => t('lists.packageDone', { count: wordCount, clips: clipCount, size: sizeText(bytes) }),
      failed: () => t('lists.packageFailed'),
    };
    setText(parts.packageState, problem || texts[stage]?.() || '');
  }

  #ankiPart() {
    const parts = this.#parts;
    parts.sends = this.#make('input', { type: 'checkbox', role: 'switch' });
    parts.sends.addEventListener('change', () => this.#setAnki({ sendsToAnki: parts.sends.checked }));
    parts.port = this.#make('input', { type: 'number', className: 'field', min: 1, max: 65535, value: 8765 });
    parts.port.addEventListener('change', () => this.#setAnki({ ankiConnectPort: Number(parts.port.value) }));
    parts.key = this.#make('input', { type: 'password', className: 'field', maxLength: 200, autocomplete: 'off' });
    parts.key.addEventListener('change', () => this.#setAnki({ ankiConnectKey: parts.key.value }));
    parts.ankiState = this.#make('p', { className: 'state', role: 'status' });
    parts.refused = this.#make('ul', { className: 'refused', hidden: true });
    parts.ankiMore = this.#make('div', { className: 'more', hidden: true },
      parts.ankiState, parts.refused,
      this.#make('div', { className: 'buttons' },
        this.#button(t('lists.ankiTry'), () => this.#ankiIs(this.#api.tryAnkiConnect())),
        this.#make('label', { className: 'labelled' }, t('lists.ankiPort'), parts.port),
        this.#make('label', { className: 'labelled' }, t('lists.ankiKey'), parts.key)));
    return this.#part(t('lists.anki'), this.#make('p', { textContent: t('lists.ankiText') }),
      this.#make('label', { className: 'switch' },
        parts.sends, this.#make('span', { textContent: t('lists.ankiSends') })),
      parts.ankiMore);
  }

  async #setAnki(changes) {
    const { sends, ankiMore, ankiState } = this.#parts;
    try {
      const settings = await this.#api.changeSettings(changes);
      sends.checked = settings.sendsToAnki;
      ankiMore.hidden = !settings.sendsToAnki;
      await this.#ankiIs(this.#api.ankiConnect());
    } catch (error) {
      ankiMore.hidden = false;
      setText(ankiState, error.message);
    }
  }

  async #watchAnki() {
    await this.#ankiIs(this.#api.ankiConnect());
    this.#later(ankiPollMs, () => this.#watchAnki());
  }

  async #ankiIs(reply) {
    const { ankiState, refused } = this.#parts;
    try {
      const state = await reply;
      setText(ankiState, ankiText(state));
      ankiState.classList.toggle('is-problem', Boolean(state.problem));
      refused.hidden = state.refused.length === 0;
      const lines = state.refused.map(({ lemma, message }) => `${lemma}: ${message}`);
      if (lines.join() === [...refused.children].map((each) => each.textContent).join()) return;
      refused.replaceChildren(...lines.map((textContent) => this.#make('li', { textContent })));
    } catch (error) {
      setText(ankiState, error.message);
    }
  }

  #importPart() {
    const parts = this.#parts;
    parts.list = this.#make('textarea', {
      className: 'field', rows: 4, spellcheck: false, ariaLabel: t('lists.importLabel'),
      placeholder: t('lists.importExample'),
    });
    parts.importState = this.#make('p', { className: 'state', role: 'status' });
    return this.#part(t('lists.import'), this.#make('p', { textContent: t('lists.importText') }), parts.list,
      this.#make('div', { className: 'buttons' }, this.#button(t('lists.importNow'), () => this.#import())),
      parts.importState);
  }

  async #import() {
    const { list, importState } = this.#parts;
    if (!list.value.trim()) {
      list.focus();
      return;
    }
    try {
      const { added, known, kept, unreadable } = await this.#api.importWords(list.value);
      const rest = [
        known > 0 && t('lists.importKnown', { count: known }), kept > 0 && t('lists.importKept', { count: kept }),
        unreadable > 0 && t('lists.importUnreadable', { count: unreadable }),
      ].filter(Boolean);
      importState.textContent = [t('lists.importAdded', { count: added }), ...rest].join(' ');
      list.value = '';
      this.#tools.imported();
    } catch (error) {
      importState.textContent = error.message;
    }
  }

  #learnerPart() {
    return this.#part(t('lists.learner'), this.#make('p', { textContent: t('lists.learnerText') }),
      this.#make('div', { className: 'buttons' }, this.#download(t('lists.learnerSave'), this.#api.learnerFileAddress)),
      this.#make('p', { className: 'quiet', textContent: t('lists.learnerBack') }));
  }

  #later(ms, call) {
    const timer = setTimeout(() => {
      this.#timers.delete(timer);
      if (this.#dialog.open) call();
    }, ms);
    this.#timers.add(timer);
  }

  #stopWatching() {
    for (const timer of this.#timers) clearTimeout(timer);
    this.#timers.clear();
  }
}

/** How the sending to Anki stands, as a sentence or two. */
export function ankiText({ isOn, waitingCount, sentCount, refusedCount, problem }) {
  if (!isOn) return '';
  const parts = [problem?.message ?? '', t('lists.ankiCount', { sent: sentCount, waiting: waitingCount })];
  if (refusedCount > 0) parts.push(t('lists.ankiRefused', { count: refusedCount }));
  return parts.filter(Boolean).join(' ');
}

export function sizeText(bytes) {
  return bytes < 1_000_000 ? t('lists.kilobytes', { size: Math.max(1, Math.round(bytes / 1000)) })
    : t('lists.megabytes', { size: Math.round(bytes / 100_000) / 10 });
}

// A text that stays the same is not told again.
function setText(element, text) {
  if (element.textContent !== text) element.textContent = text;
}
