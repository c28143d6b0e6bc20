// SPDX-License-Identifier: GPL-3.0-or-later

import { button, create } from '../../shared/elements.mjs';
import { t } from '../../shared/texts.mjs';
import { timeText } from '../../shared/timetext.mjs';
import { formOf } from '../lines/linetext.mjs';
import { giveBackPresses, keepPresses } from '../panels/presses.mjs';
import { cardPlace } from './cardplace.mjs';
import { likeliest, lookUpPicked, shortMeaning } from './lookups.mjs';
import { englishPart, meaningsPart, sourcesPart } from './meanings.mjs';
import { occurrences } from './occurrences.mjs';
import { StatusChoice } from './statuschoice.mjs';
import { WordRecord } from './wordrecord.mjs';

const elsewhereShown = 4;
const widthPx = 404;
const grades = {
  grade0: 'new', grade1: 'learning1', grade2: 'learning2', grade3: 'learning3', grade4: 'learning4', grade5: 'known', ignoreWord: 'ignored',
};

/** The card of a picked word: what it means, how it sounds, where else it stands, and what the learner makes of it. */
export class WordCard {
  #document;
  #element;
  #api;
  #lines;
  #words;
  #videoId;
  #subtitles;
  #goTo;
  #playSound;
  #tell;
  #closePick = () => {};
  #picked = null;
  #reply = null;
  #headword = null;
  #record = null;
  #sound = null;
  #status;
  #trouble;
  #parts = {};
  #opens = 0;
  #answered = Promise.resolve(); // the look-up of what is picked

  /**
   * lines: ShownLines; goTo(cue): leaves the card for a line; playSound(url): hands a sound to the player; tell(text):
   * says something to those who listen.
   */
  constructor(document, { api, lines, words, subtitles, videoId, goTo, playSound, tell }) {
    this.#document = document;
    this.#element = document.getElementById('word-card');
    this.#api = api;
    this.#lines = lines;
    this.#words = words;
    this.#subtitles = subtitles;
    this.#videoId = videoId;
    this.#goTo = goTo;
    this.#playSound = playSound;
    this.#tell = tell;
    this.#status = new StatusChoice(document, (status) => this.#grade(status));
    this.#trouble = create(document, 'p', { className: 'trouble', role: 'alert' });
    keepPresses(this.#element);
    this.#element.addEventListener('keydown', (event) => { if (this.#isOwn(event)) event.stopPropagation(); });
    document.defaultView.addEventListener('resize', () => this.#place());
    new ResizeObserver(() => this.#place()).observe(document.getElementById('lines')); // a panel makes them give way
  }

  /** close(): what the card's own button does. */
  onClose(close) {
    this.#closePick = close;
  }

  get isOpen() {
    return !this.#element.hidden;
  }

  actions = {
    ...Object.fromEntries(Object.entries(grades).map(([action, status]) => [action, () => this.#grade(status)])),
    saveWord: () => this.#change((record) => record.toggleSaved()),
    speakWord: () => this.#speak('soundUrl'),
    speakSlowly: () => this.#speak('slowSoundUrl'),
  };

  /**
   * picked: { cue, text, start, end, isPhrase, rectangles(), byKey }: places in the line's text; the rectangles of the
   * first word and of the lines, in the window: { word, lines }.
   */
  open(picked) {
    this.#opens += 1;
    this.#picked = picked;
    this.#reply = null;
    this.#headword = null;
    this.#record = null;
    this.#sound = null;
    this.#trouble.textContent = '';
    this.#show(picked.text.slice(picked.start, picked.end));
    if (picked.byKey) this.#element.focus({ focusVisible: false });
    this.#answered = this.#lookUp(() => lookUpPicked(this.#api, { ...picked, ...this.#neighbours(picked.cue) }));
  }

  // Shows what comes, if the card is still about it then.
  async #lookUp(ask) {
    const open = this.#opens;
    try {
      const reply = await ask();
      if (open !== this.#opens) return;
      this.#reply = reply;
      this.#choose(likeliest(reply.headwords));
      this.#tell(this.#headword ? `${this.#headword.word}: ${shortMeaning(this.#headword)}` : t('card.nothing'));
    } catch (error) {
      if (open === this.#opens) this.#say(error.message);
    }
  }

  close() {
    this.#opens += 1;
    const hadFocus = this.#element.contains(this.#document.activeElement);
    this.#element.hidden = true;
    giveBackPresses(this.#document);
    if (hadFocus) this.#document.activeElement.blur();
  }

  // What is typed, scrolled or pressed here is this card's own; the other keys go on to the player's.
  #isOwn({ target, key }) {
    if (target.matches('input')) return !/^(F\d|Escape)/.test(key);
    if (target === this.#element) return false;
    if (target.closest('.body') && /^(Arrow(Up|Down)|Page|Home|End)/.test(key)) return true;
    return /^(Enter| )$/.test(key);
  }

  #neighbours(cue) {
    const cues = this.#lines.index('learned')?.cues ?? [];
    const place = cues.findIndex((each) => each.startMs === cue?.startMs && each.lines.join() === cue.lines.join());
    const textOf = (each) => (each ? each.lines.join('\n') : '');
    return { before: textOf(cues[place - 1]), after: place < 0 ? '' : textOf(cues[place + 1]) };
  }

  // The frame, with what is known before the service answers.
  #show(form) {
    const d = this.#document;
    const part = (name, className) => (this.#parts[name] = create(d, 'div', { className }));
    const icon = (name, action, key) => button(d, { className: `icon ${name}`, ariaLabel: t(key), title: t(key) }, action);
    this.#parts.word = create(d, 'h2', { id: 'card-word', lang: 'en', textContent: form });
    this.#parts.ipa = create(d, 'span', { className: 'ipa', lang: 'en-fonipa' });
    this.#parts.save = button(d, { className: 'save' }, () => this.actions.saveWord(), t('card.save'));
    this.#element.replaceChildren(
      create(d, 'header', {},
        create(d, 'div', { className: 'title' }, this.#parts.word, this.#parts.ipa,
          icon('speak', () => this.#speak('soundUrl'), 'card.speak'),
          icon('slow', () => this.#speak('slowSoundUrl'), 'card.speakSlowly')),
        icon('close', () => this.#closePick(), 'close'),
        part('about', 'about'), part('choices', 'choices')),
      create(d, 'div', { className: 'body', tabIndex: 0, role: 'group', ariaLabel: t('card.meanings') },
        part('meanings', 'meanings'), part('english', 'english'), part('elsewhere', 'elsewhere'), part('sources', 'sources')),
      create(d, 'footer', {}, this.#teach(), this.#trouble,
        create(d, 'div', { className: 'marks' }, this.#status.element, this.#parts.save)),
    );
    this.#element.setAttribute('aria-busy', 'true');
    this.#status.show(null);
    this.#element.hidden = false;
    this.#place();
  }

  #place() {
    if (this.#element.hidden) return;
    const view = this.#document.defaultView;
    const { word, lines } = this.#picked.rectangles();
    if (!word) return;
    const width = Math.min(widthPx, view.innerWidth - 20);
    const place = cardPlace({
      word,
      lines,
      width,
      window: { width: view.innerWidth, height: view.innerHeight },
      reserved: this.#document.getElementById('bar').getBoundingClientRect().height,
    });
    const { style } = this.#element;
    style.width = `${width}px`;
    style.left = `${place.left}px`;
    style.top = place.top === undefined ? 'auto' : `${place.top}px`;
    style.bottom = place.bottom === undefined ? 'auto' : `${place.bottom}px`;
    style.maxHeight = `${place.maxHeight}px`;
  }

  #choose(headword) {
    const d = this.#document;
    const { form, headwords, near } = this.#reply;
    this.#headword = headword;
    this.#element.setAttribute('aria-busy', 'false');
    const word = headword?.word ?? this.#reply.lemmas?.[0] ?? form;
    this.#parts.word.textContent = word;
    this.#parts.about.replaceChildren(...this.#about(word));
    this.#parts.choices.replaceChildren(...(headwords.length > 1 ? headwords.map((each) => this.#choice(each)) : []));
    if (headword) this.#showMeanings();
    else this.#parts.meanings.replaceChildren(...this.#nothing(near));
    this.#parts.english.replaceChildren(...englishPart(d, headword?.english ?? [], !headword?.entries.length));
    this.#parts.elsewhere.replaceChildren(...this.#elsewhere(word));
    this.#parts.sources.replaceChildren(...sourcesPart(d, this.#reply.sources));
    this.#gloss.value = headword?.gloss ?? '';
    this.#status.show(headword?.status ?? null);
    this.#hear(word);
    this.#loadRecord(this.#lemma);
  }

  #showMeanings() {
    this.#parts.meanings.replaceChildren(...meaningsPart(this.#document, this.#headword, {
      hasDictionary: this.#reply.hasDictionary, languageTag: this.#subtitles.line('native')?.languageTag ?? '',
    }));
  }

  #grade(status) {
    return this.#change((record) => record.grade(status));
  }

  get #gloss() {
    return this.#parts.gloss;
  }

  get #lemma() {
    return this.#headword?.word ?? this.#reply?.lemmas?.[0] ?? '';
  }

  // How the word stands in the line, how common it is, how often the film has it.
  #about(word) {
    const d = this.#document;
    const { form, whole } = this.#reply;
    const told = [];
    if (whole) told.push(create(d, 'span', { lang: 'en', textContent: `${form} = ${whole}` }));
    else if (this.#isOtherForm(word, form)) told.push(create(d, 'span', { lang: 'en', textContent: form }));
    if (this.#headword?.rank > 0) told.push(create(d, 'span', { title: t('card.rankMeans') }, t('card.rank', { rank: this.#headword.rank })));
    const { count = 0, forms = [] } = this.#words.word(word) ?? {};
    if (count > 1) told.push(create(d, 'span', {}, t('card.times', { count })));
    if (forms.length > 1) told.push(create(d, 'span', { lang: 'en', textContent: forms.join(', ') }));
    return told;
  }

  // Told by itself only where the film's forms, which follow, do not have it.
  #isOtherForm(word, form) {
    if (this.#headword?.isPhrase || formOf(form) === formOf(word)) return false;
    return (this.#words.word(word)?.forms.length ?? 0) < 2;
  }

  #choice(headword) {
    return button(this.#document, {
      className: 'choice', lang: 'en', ariaPressed: String(headword === this.#headword), textContent: headword.word,
    }, () => this.#choose(headword));
  }

  #nothing(near) {
    const d = this.#document;
    const said = create(d, 'p', { className: 'quiet' }, t('card.nothing'));
    if (near.length === 0) return [said];
    return [said, create(d, 'p', { className: 'near' }, t('card.near'), ' ',
      ...near.map((word) => button(d, { className: 'choice', lang: 'en', textContent: word }, () => { this.#answered = this.#lookUp(() => this.#api.lookUp(word, 0)); })))];
  }

  #elsewhere(word) {
    const d = this.#document;
    const cues = this.#lines.index('learned')?.cues ?? [];
    const { cue } = this.#picked;
    if (!cue) return [];
    const found = occurrences(cues, [word, ...(this.#words.word(word)?.forms ?? [])], cue, elsewhereShown);
    if (found.count === 0) return [];
    return [
      create(d, 'h3', {}, t('card.elsewhere', { count: found.count })),
      create(d, 'ul', {}, ...found.cues.map((each) => create(d, 'li', {},
        button(d, { className: 'line-link' }, () => this.#goTo(each),
          create(d, 'span', { className: 'time' }, timeText(each.startMs)),
          create(d, 'span', { lang: 'en', textContent: each.lines.join(' ') }))))),
    ];
  }

  #teach() {
    const d = this.#document;
    this.#parts.gloss = create(d, 'input', {
      type: 'text', maxLength: 500, placeholder: t('card.ownMeaning'), ariaLabel: t('card.ownMeaning'), dir: 'auto',
    });
    const form = create(d, 'form', { className: 'teach' }, this.#parts.gloss,
      create(d, 'button', { type: 'submit', className: 'plain' }, t('card.teach')));
    form.addEventListener('submit', (event) => {
      event.preventDefault();
      this.#teachGloss();
    });
    return form;
  }

  async #teachGloss() {
    const gloss = this.#gloss.value.trim();
    if (!await this.#change((record) => record.teach(gloss))) return;
    if (this.#headword) {
      this.#headword.gloss = gloss;
      this.#showMeanings();
    }
    this.#element.focus({ focusVisible: false });
  }

  #sightingOf(lemma) {
    const { cue, text, start, end } = this.#picked;
    return {
      form: text.slice(start, end).replace(/\s+/g, ' '),
      lemma,
      line: text,
      translation: this.#lines.view('native').text.text,
      videoId: Number(this.#videoId),
      subtitleId: this.#subtitles.line('learned')?.subtitleId,
      startMs: Math.max(0, Math.round(cue.startMs)),
      endMs: Math.max(1, Math.round(cue.endMs)),
    };
  }

  // One change of the word, as soon as it is known which one it is; shows what holds then. Whether it was done.
  async #change(ask) {
    const open = this.#opens;
    await this.#answered;
    const record = this.#record;
    if (open !== this.#opens || !record) return false;
    this.#trouble.textContent = '';
    try {
      await ask(record);
      if (record === this.#record) this.#showRecord(true);
      return record === this.#record;
    } catch (error) {
      if (record === this.#record) this.#say(error.message);
      return false;
    }
  }

  async #loadRecord(lemma) {
    const record = lemma ? new WordRecord(this.#api, this.#words, this.#sightingOf(lemma)) : null;
    this.#record = record;
    if (!record) return;
    try {
      await record.loaded;
      if (record === this.#record) this.#showRecord(false);
    } catch (error) {
      console.warn(error.message); // it can be saved all the same
    }
  }

  #showRecord(isAnnounced) {
    const { status, isSaved } = this.#record;
    if (this.#headword) this.#headword.status = status;
    this.#status.show(status);
    const { save } = this.#parts;
    save.textContent = t(isSaved ? 'card.saved' : 'card.save');
    save.setAttribute('aria-pressed', String(isSaved));
    save.title = t(isSaved ? 'card.forget' : 'card.saveMeans');
    if (isAnnounced) this.#status.announce();
  }

  async #hear(word) {
    const open = this.#opens;
    this.#sound = null;
    this.#parts.ipa.textContent = '';
    try {
      const sound = await this.#api.pronunciation(word);
      if (open !== this.#opens || word !== this.#lemma) return;
      this.#sound = sound;
      this.#parts.ipa.textContent = sound.ipa ? `/${sound.ipa}/` : '';
    } catch (error) {
      console.warn(error.message); // a word without sound is still a word
    }
    this.#element.classList.toggle('mute', this.#sound === null);
  }

  #speak(which) {
    if (this.#sound) this.#playSound(this.#sound[which]);
  }

  #say(text) {
    this.#element.setAttribute('aria-busy', 'false');
    this.#trouble.textContent = text;
  }
}
