// SPDX-License-Identifier: GPL-3.0-or-later

import { button, create } from '../../shared/elements.mjs';
import { isolated } from '../../shared/direction.mjs';
import { numberLocale, t } from '../../shared/texts.mjs';
import { listPart, setText } from './listpart.mjs';
import { Polling } from './polling.mjs';
import { sizeText } from './sizetext.mjs';

const pollMs = 3000;

/** All of the learner's in one file: saved, and brought back in place of what is here. */
export class LearnerPart {
  #document;
  #api;
  #tools;
  #list;
  #state;
  #files = [];
  #askedOf = null; // the id of the file that waits for a second press
  #isBusy = false;
  #isUnread = false; // the last look has failed
  #polling = new Polling(() => this.#look(), pollMs);

  /**
   * tools: { busy(isBusy): whether a file is being brought back, beforeBringing() settles when the pages have nothing more to write of what is here now, broughtBack(): all
   * that the pages show is another's }.
   */
  constructor(document, api, tools) {
    this.#document = document;
    this.#api = api;
    this.#tools = tools;
    this.#list = create(document, 'ul', { className: 'saved-files' });
    this.#state = create(document, 'p', { className: 'state', role: 'status' });
    this.element = listPart(document, t('lists.learner'),
      create(document, 'p', { textContent: t('lists.learnerText') }),
      create(document, 'div', { className: 'buttons' },
        create(document, 'a', {
          className: 'field', href: api.learnerFileAddress, download: '', textContent: t('lists.learnerSave'),
        })),
      create(document, 'p', { textContent: t('lists.learnerBack') }), this.#list, this.#state);
    this.element.tabIndex = -1;
  }

  opened() {
    this.#polling.start();
  }

  closed() {
    this.#polling.stop();
  }

  // A file that is put into its folder meanwhile is listed, too.
  async #look() {
    let files = null;
    let problem = '';
    try {
      files = await this.#api.savedLearnerFiles();
    } catch (error) {
      problem = error.message;
    }
    if (this.#isBusy) return;
    if (problem || this.#isUnread) setText(this.#state, problem);
    this.#isUnread = Boolean(problem);
    if (files) this.#take(files);
  }

  #take(files) {
    if (JSON.stringify(files) === JSON.stringify(this.#files)) return;
    const focused = this.#list.contains(this.#document.activeElement) && this.#document.activeElement.closest('li');
    this.#files = files;
    if (!files.some(({ id }) => id === this.#askedOf)) this.#askedOf = null;
    this.#show();
    if (focused) this.#focus(focused.dataset.file);
  }

  #show() {
    this.#list.replaceChildren(...this.#files.map((file, i) => this.#item(file, i)));
  }

  #item(file, place) {
    const d = this.#document;
    const isAsked = this.#askedOf === file.id;
    const about = { 'aria-describedby': `saved-file-${place}` };
    // The second press of a double-click answers nothing.
    const bring = ({ detail }) => { if (detail < 2) this.#bring(file); };
    const choices = isAsked
      ? [button(d, { className: 'field main', ...about }, bring, t('lists.learnerReplace')),
        button(d, { className: 'field', ...about }, () => this.#ask(null, file), t('cancel'))]
      : [button(d, { className: 'field', ...about }, () => this.#ask(file.id, file), t('lists.learnerBring'))];
    const item = create(d, 'li', {},
      create(d, 'div', { id: `saved-file-${place}` },
        create(d, 'span', { className: 'name', textContent: nameText(file) }),
        create(d, 'span', { className: 'quiet', textContent: `${timeText(file)} · ${sizeText(file.bytes)}` }),
        ...(isAsked ? [create(d, 'span', { role: 'alert', textContent: t('lists.learnerAsk') })] : [])),
      create(d, 'div', { className: 'buttons' }, ...choices));
    item.dataset.file = file.id;
    return item;
  }

  #ask(id, file) {
    if (this.#isBusy) return;
    this.#askedOf = id;
    setText(this.#state, '');
    this.#show();
    this.#focus(file.id);
  }

  async #bring(file) {
    if (this.#isBusy) return;
    this.#setBusy(true);
    setText(this.#state, t('lists.learnerBringing'));
    try {
      await this.#tools.beforeBringing();
      await this.#api.bringBackLearnerFile(file.id);
      this.#tools.broughtBack();
    } catch (error) {
      this.#setBusy(false);
      this.#askedOf = null;
      this.#show();
      setText(this.#state, error.message);
      this.#focus(file.id);
    }
  }

  #setBusy(isBusy) {
    this.#isBusy = isBusy;
    this.#tools.busy(isBusy);
  }

  // To what does no harm; to all of it when the file has gone.
  #focus(id) {
    const choice = this.#list.querySelector(`[data-file="${id}"] button:last-child`);
    (choice ?? this.element).focus();
    choice?.closest('li').scrollIntoView({ block: 'nearest' }); // with what it is asked
  }
}

function nameText({ fileName, folderName, isBackup }) {
  if (isBackup) return t('lists.learnerBackup');
  return t('lists.learnerFile', { file: isolated(fileName), folder: isolated(folderName) });
}

function timeText({ savedAtMs }) {
  return new Intl.DateTimeFormat(numberLocale(), { dateStyle: 'medium', timeStyle: 'short' }).format(savedAtMs);
}
