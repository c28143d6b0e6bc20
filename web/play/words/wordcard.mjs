// SPDX-License-Identifier: GPL-3.0-or-later

import { button, create } from '../../shared/elements.mjs';
import { t } from '../../shared/texts.mjs';
import { giveBackPresses, keepPresses } from '../panels/presses.mjs';
import { aboutPart, choicesPart, elsewherePart, nothingPart, wordsPart } from './aboutword.mjs';
import { cardPlace } from './cardplace.mjs';
import { lookUpPicked, shortMeaning } from './lookups.mjs';
import { englishPart, meaningsPart, sourcesPart } from './meanings.mjs';
import { PickedWord } from './pickedword.mjs';
import { StatusChoice, statusOfAction } from './statuschoice.mjs';

const widthPx = 404;
const lowHeight = '(max-height: 420px)'; // as in card.css

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
  #warn;
  #closePick = () => {};
  #marked = () => {};
  #place = null; // what was picked, as open() has it
  #word = null; // the PickedWord that the card is about; null while it is closed
  #sound = null;
  #status;
  #trouble;
  #parts = {};

  /**
   * lines: ShownLines; goTo(cue): leaves the card for a line; playSound(url): hands a sound to the player; tell(text):
   * says something to those who listen; warn(text): says what went wrong with a word that the card has left.
   */
  constructor(document, { api, lines, words, subtitles, videoId, goTo, playSound, tell, warn }) {
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
    this.#warn = warn;
    this.#status = new StatusChoice(document, (status) => this.#grade(status));
    this.#trouble = create(document, 'p', { className: 'trouble', role: 'alert' });
    keepPresses(this.#element);
    this.#element.addEventListener('keydown', (event) => { if (this.#isOwn(event)) event.stopPropagation(); });
    document.defaultView.addEventListener('resize', () => this.#fit());
    new ResizeObserver(() => this.#fit()).observe(document.getElementById('lines')); // a panel makes them give way
  }

  /** close(): what the card's own button does. */
  onClose(close) {
    this.#closePick = close;
  }

  /** marked(start, end): what the card is about, from and to which place of the line's text. */
  onMark(marked) {
    this.#marked = marked;
  }

  get isOpen() {
    return !this.#element.hidden;
  }

  actions = {
    ...Object.fromEntries(Object.entries(statusOfAction).map(([action, status]) => [action, () => this.#grade(status)])),
    saveWord: () => this.#change((word) => word.save()),
    speakWord: () => this.#speak('soundUrl'),
    speakSlowly: () => this.#speak('slowSoundUrl'),
  };

  /**
   * picked: { cue, text, start, end, isPhrase, rectangles(), byKey }: places in the line's text; the rectangles of the
   * first word and of the lines, in the window: { word, lines }.
   */
  open(picked) {
    this.#place = picked;
    this.#word = new PickedWord(this.#api, this.#words, this.#sightings(picked));
    this.#sound = null;
    this.#trouble.textContent = '';
    this.#show(picked.text.slice(picked.start, picked.end));
    if (picked.byKey) this.#element.focus({ focusVisible: false });
    this.#lookUp(() => lookUpPicked(this.#api, { ...picked, ...this.#neighbours(picked.cue) }));
  }

  close() {
    this.#word = null;
    const hadFocus = this.#element.contains(this.#document.activeElement);
    this.#element.hidden = true;
    giveBackPresses(this.#document);
    if (hadFocus) this.#document.activeElement.blur();
  }

  // Shows what comes, if the card is still about it then.
  async #lookUp(ask) {
    const word = this.#word;
    try {
      await word.lookUp(ask);
      if (word !== this.#word) return;
      this.#showTold();
      this.#tell(word.headword ? `${word.headword.word}: ${shortMeaning(word.headword)}` : t('card.nothing'));
    } catch (error) {
      if (word === this.#word) this.#say(error.message);
    }
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
    this.#parts.save = button(d, { className: 'save' }, () => this.#change((word) => word.toggleSaved()), t('card.save'));
    this.#parts.teach = this.#teach();
    this.#parts.body = create(d, 'div', { className: 'body', tabIndex: 0, role: 'group', ariaLabel: t('card.meanings') },
      part('meanings', 'meanings'), part('english', 'english'), part('elsewhere', 'elsewhere'), part('sources', 'sources'));
    this.#parts.footer = create(d, 'footer', {}, this.#parts.teach, this.#trouble,
      create(d, 'div', { className: 'marks' }, this.#status.element, this.#parts.save));
    this.#element.replaceChildren(
      create(d, 'header', {},
        create(d, 'div', { className: 'title' }, this.#parts.word, this.#parts.ipa,
          icon('speak', () => this.#speak('soundUrl'), 'card.speak'),
          icon('slow', () => this.#speak('slowSoundUrl'), 'card.speakSlowly')),
        icon('close', () => this.#closePick(), 'close'),
        part('about', 'about'), part('choices', 'choices')),
      this.#parts.body, this.#parts.footer);
    this.#element.setAttribute('aria-busy', 'true');
    this.#status.show(null);
    this.#element.hidden = false;
    this.#fit();
  }

  #fit() {
    if (this.#element.hidden) return;
    const view = this.#document.defaultView;
    const { word, lines } = this.#place.rectangles();
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
    this.#putTeach(view.matchMedia(lowHeight).matches);
    style.width = `${width}px`;
    style.left = `${place.left}px`;
    style.top = place.top === undefined ? 'auto' : `${place.top}px`;
    style.bottom = place.bottom === undefined ? 'auto' : `${place.bottom}px`;
    style.maxHeight = `${place.maxHeight}px`;
  }

  // Where there is little room it is scrolled to, behind what the word means.
  #putTeach(isLow) {
    const { teach, body, footer } = this.#parts;
    const home = isLow ? body : footer;
    if (teach.parentElement === home) return;
    if (isLow) body.append(teach);
    else footer.prepend(teach);
  }

  #choose(headword) {
    this.#word.choose(headword);
    this.#showTold();
  }

  // All that the service has told of the headword that is meant.
  #showTold() {
    const d = this.#document;
    const picked = this.#word;
    const { reply, headword } = picked;
    this.#element.setAttribute('aria-busy', 'false');
    const word = picked.lemma || reply.form;
    const filmWord = this.#words.word(word);
    const { cue, start, end } = this.#place;
    const isWider = headword?.isPhrase && reply.offset !== undefined;
    const from = isWider ? headword.start - reply.offset : start;
    this.#marked(from, isWider ? from + headword.length : end);
    this.#parts.word.textContent = word;
    this.#parts.about.replaceChildren(...aboutPart(d, picked, word, filmWord));
    this.#parts.choices.replaceChildren(...choicesPart(d, picked, (each) => this.#choose(each)));
    if (headword) this.#showMeanings();
    else this.#showNothing(reply.near);
    this.#parts.english.replaceChildren(...englishPart(d, headword?.english ?? [], !headword?.entries.length));
    const cues = this.#lines.index('learned')?.cues ?? [];
    this.#parts.elsewhere.replaceChildren(...elsewherePart(d, cues, [word, ...(filmWord?.forms ?? [])], cue, this.#goTo));
    this.#parts.sources.replaceChildren(...sourcesPart(d, reply.sources));
    this.#parts.gloss.value = headword?.gloss ?? '';
    this.#status.show(headword?.status ?? null);
    this.#hear(word);
    this.#showLoaded(picked.record);
  }

  #showMeanings() {
    this.#parts.meanings.replaceChildren(...meaningsPart(this.#document, this.#word.headword, {
      hasDictionary: this.#word.reply.hasDictionary, languageTag: this.#subtitles.line('native')?.languageTag ?? '',
    }), ...wordsPart(this.#document, this.#word, (each) => this.#choose(each)));
  }

  #showNothing(near) {
    const lookUp = (word) => this.#lookUp(() => this.#api.lookUp(word, 0));
    this.#parts.meanings.replaceChildren(...nothingPart(this.#document, near, lookUp));
  }

  #grade(status) {
    return this.#change((word) => word.grade(status));
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
    const gloss = this.#parts.gloss.value.trim();
    if (!await this.#change((word) => word.teach(gloss))) return;
    if (this.#word.headword) this.#showMeanings();
    this.#element.focus({ focusVisible: false });
  }

  // Where the word was met, for a dictionary form of it; the lines may be others when that is known.
  #sightings({ cue, text, start, end }) {
    const sighting = {
      form: text.slice(start, end).replace(/\s+/g, ' '),
      line: text,
      translation: this.#lines.view('native').text.text,
      videoId: Number(this.#videoId),
      subtitleId: this.#subtitles.line('learned')?.subtitleId,
      startMs: Math.max(0, Math.round(cue.startMs)),
      endMs: Math.max(1, Math.round(cue.endMs)),
    };
    return (lemma) => ({ ...sighting, lemma });
  }

  // One change of the word, as soon as it is known which one it is; shows what holds then. Whether the card shows it.
  async #change(step) {
    const word = this.#word;
    this.#trouble.textContent = '';
    try {
      const isShown = await step(word);
      if (!isShown || word !== this.#word) return false;
      this.#showRecord(true);
      return true;
    } catch (error) {
      if (word === this.#word) this.#say(error.message);
      else this.#warn(error.message);
      return false;
    }
  }

  async #showLoaded(record) {
    await record?.loaded.catch(() => {}); // it can be saved all the same
    if (record && record === this.#word?.record) this.#showRecord(false);
  }

  #showRecord(isAnnounced) {
    const { status, isSaved } = this.#word.record;
    this.#status.show(status);
    const { save } = this.#parts;
    save.textContent = t(isSaved ? 'card.saved' : 'card.save');
    save.setAttribute('aria-pressed', String(isSaved));
    save.title = t(isSaved ? 'card.forget' : 'card.saveMeans');
    if (isAnnounced) this.#status.announce();
  }

  async #hear(word) {
    const picked = this.#word;
    this.#sound = null;
    this.#parts.ipa.textContent = '';
    try {
      const sound = await this.#api.pronunciation(word);
      if (picked !== this.#word || word !== (picked.lemma || picked.reply.form)) return;
      this.#sound = sound;
      this.#parts.ipa.textContent = sound.ipa ? `/${sound.ipa}/` : '';
    } catch (error) {
      console.warn(error.message); // a word without sound is still a word
      if (picked !== this.#word) return;
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
