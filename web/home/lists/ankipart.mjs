// SPDX-License-Identifier: GPL-3.0-or-later

import { button, create } from '../../shared/elements.mjs';
import { t } from '../../shared/texts.mjs';
import { listPart, setText } from './listpart.mjs';
import { Polling } from './polling.mjs';

const pollMs = 3000;

/** The words that go straight to an Anki on this computer. */
export class AnkiPart {
  #document;
  #api;
  #sends;
  #port;
  #key;
  #more;
  #state;
  #refused;
  #polling = new Polling(() => this.#stands(this.#api.ankiConnect()), pollMs);

  constructor(document, api) {
    this.#document = document;
    this.#api = api;
    this.#sends = create(document, 'input', { type: 'checkbox', role: 'switch' });
    this.#sends.addEventListener('change', () => this.#set({ sendsToAnki: this.#sends.checked }));
    this.#port = create(document, 'input', { type: 'number', className: 'field', min: 1, max: 65535, value: 8765 });
    this.#port.addEventListener('change', () => this.#set({ ankiConnectPort: Number(this.#port.value) }));
    this.#key = create(document, 'input', { type: 'password', className: 'field', maxLength: 200, autocomplete: 'off' });
    this.#key.addEventListener('change', () => this.#set({ ankiConnectKey: this.#key.value }));
    this.#state = create(document, 'p', { className: 'state', role: 'status' });
    this.#refused = create(document, 'ul', { className: 'refused', hidden: true });
    this.#more = create(document, 'div', { className: 'more', hidden: true },
      this.#state, this.#refused,
      create(document, 'div', { className: 'buttons' },
        button(document, { className: 'field' }, () => this.#stands(this.#api.tryAnkiConnect()), t('lists.ankiTry')),
        create(document, 'label', { className: 'labelled' }, t('lists.ankiPort'), this.#port),
        create(document, 'label', { className: 'labelled' }, t('lists.ankiKey'), this.#key)));
    this.element = listPart(document, t('lists.anki'), create(document, 'p', { textContent: t('lists.ankiText') }),
      create(document, 'label', { className: 'switch' },
        this.#sends, create(document, 'span', { textContent: t('lists.ankiSends') })),
      this.#more);
  }

  async opened() {
    this.#polling.start();
    const settings = await this.#api.settings().catch(() => null);
    if (!settings) return;
    this.#sends.checked = settings.sendsToAnki;
    this.#port.value = settings.ankiConnectPort;
    this.#key.value = settings.ankiConnectKey;
    this.#more.hidden = !settings.sendsToAnki;
  }

  closed() {
    this.#polling.stop();
  }

  async #set(changes) {
    try {
      const settings = await this.#api.changeSettings(changes);
      this.#sends.checked = settings.sendsToAnki;
      this.#more.hidden = !settings.sendsToAnki;
      await this.#stands(this.#api.ankiConnect());
    } catch (error) {
      this.#more.hidden = false;
      setText(this.#state, error.message);
    }
  }

  async #stands(reply) {
    try {
      const state = await reply;
      setText(this.#state, ankiText(state));
      this.#state.classList.toggle('is-problem', Boolean(state.problem));
      this.#refused.hidden = state.refused.length === 0;
      const lines = state.refused.map(({ lemma, message }) => `${lemma}: ${message}`);
      if (lines.join() === [...this.#refused.children].map((each) => each.textContent).join()) return;
      this.#refused.replaceChildren(...lines.map((textContent) => create(this.#document, 'li', { textContent })));
    } catch (error) {
      setText(this.#state, error.message);
    }
  }
}

/** How the sending to Anki stands, as a sentence or two. */
export function ankiText({ isOn, waitingCount, sentCount, refusedCount, problem }) {
  if (!isOn) return '';
  const parts = [problem?.message ?? '', t('lists.ankiCount', { sent: sentCount, waiting: waitingCount })];
  if (refusedCount > 0) parts.push(t('lists.ankiRefused', { count: refusedCount }));
  return parts.filter(Boolean).join(' ');
}
