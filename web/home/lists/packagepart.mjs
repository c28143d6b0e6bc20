// SPDX-License-Identifier: GPL-3.0-or-later

import { button, create } from '../../shared/elements.mjs';
import { t } from '../../shared/texts.mjs';
import { listPart, setText } from './listpart.mjs';
import { Polling } from './polling.mjs';
import { sizeText } from './sizetext.mjs';

const pollMs = 500;

/** An Anki package of the words: made in the service while the learner goes on. */
export class PackagePart {
  #api;
  #clips;
  #clipsLabel;
  #make;
  #stop;
  #get;
  #progress;
  #state;
  #package = { stage: 'none' };
  #polling = new Polling(() => this.#look(), pollMs);

  constructor(document, api) {
    this.#api = api;
    this.#clips = create(document, 'input', { type: 'checkbox', checked: true });
    this.#clipsLabel = create(document, 'label', { className: 'switch' },
      this.#clips, create(document, 'span', { textContent: t('lists.clips') }));
    this.#make = button(document, { className: 'field' }, () => this.#begin(), t('lists.makePackage'));
    this.#stop = button(document, { className: 'field' }, () => this.#packageIs(api.endAnkiPackage()), t('lists.stop'));
    this.#get = create(document, 'a', {
      className: 'field', href: api.ankiPackageAddress, download: '', textContent: t('lists.getPackage'),
    });
    this.#progress = create(document, 'progress', { max: 100, value: 0, ariaLabel: t('lists.package') });
    for (const each of [this.#stop, this.#progress, this.#get]) each.hidden = true; // until it is known how it stands
    this.#state = create(document, 'p', { className: 'state', role: 'status' });
    this.element = listPart(document, t('lists.package'),
      create(document, 'p', { textContent: t('lists.packageText') }), this.#clipsLabel,
      create(document, 'div', { className: 'buttons' }, this.#make, this.#progress, this.#stop, this.#get), this.#state);
  }

  opened() {
    this.#polling.start();
  }

  closed() {
    this.#polling.stop();
  }

  async #begin() {
    await this.#packageIs(this.#api.beginAnkiPackage(this.#clips.checked));
    this.#polling.again();
  }

  async #look() {
    await this.#packageIs(this.#api.ankiPackage());
    return this.#package.stage === 'running';
  }

  async #packageIs(reply) {
    let problem = '';
    try {
      this.#package = await reply;
    } catch (error) {
      problem = error.message;
    }
    const { stage, percent, wordCount, clipCount, bytes } = this.#package;
    const isRunning = stage === 'running';
    this.#make.hidden = isRunning;
    this.#stop.hidden = !isRunning;
    this.#progress.hidden = !isRunning;
    this.#progress.value = percent ?? 0;
    this.#clipsLabel.hidden = isRunning;
    this.#get.hidden = stage !== 'done';
    const texts = {
      running: () => t('lists.packageRunning', { percent }),
      done: () => t('lists.packageDone', { count: wordCount, clips: clipCount, size: sizeText(bytes) }),
      failed: () => t('lists.packageFailed'),
    };
    setText(this.#state, problem || texts[stage]?.() || '');
  }
}
