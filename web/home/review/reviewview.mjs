// SPDX-License-Identifier: GPL-3.0-or-later

import { create } from '../../shared/elements.mjs';
import { t } from '../../shared/texts.mjs';
import { Answers } from '../answers.mjs';
import { digitOf } from '../digit.mjs';
import { placeOfWord } from '../marking.mjs';
import { grades, intervalsOf, outcomeText } from './intervals.mjs';
import { meaningOf } from './meaning.mjs';
import {
  backParts, endPart, endText, frontPart, gradePart, problemPart, sittingPart, turnPart, undoButton,
} from './reviewparts.mjs';
import { ReviewSession } from './reviewsession.mjs';

const dueMarginMs = 1000;
// A clock that stood still while the computer slept, and what is told of the time, are never later than this.
const longestWaitMs = 15 * 60_000;

/** The review: a card at a time, first the line in which the word was met, then what it means. */
export class ReviewView {
  #document;
  #api;
  #tools;
  #session;
  #root;
  #lookUps = new Answers();
  #pronunciations = new Answers();
  #hasWords = true;
  #timer = null;

  /** tools: { play(soundUrl), say(text), trouble(error), learnerTag(), counted(dueCount) }. */
  constructor(document, api, tools) {
    this.#document = document;
    this.#api = api;
    this.#tools = tools;
    this.#session = new ReviewSession(api);
    this.#root = document.getElementById('review');
    document.addEventListener('visibilitychange', () => this.#backToPage());
    document.defaultView.addEventListener('focus', () => this.#backToPage());
  }

  /** What is due now; the card that shows stays. */
  async refresh() {
    try {
      await this.#session.load();
      this.#hasWords = Boolean(this.#session.card) || (await this.#api.words({ count: 1 })).total > 0;
      this.#tools.counted(this.#session.dueCount);
      this.#tools.trouble(null, 'review');
    } catch (error) {
      this.#tools.trouble(error, 'review');
    }
    this.#renewInTime();
    this.render();
  }

  // What shows while there is no card has perhaps become old.
  #backToPage() {
    const { card, isLoaded, problem } = this.#session;
    if (!this.#document.hidden && !card && (isLoaded || problem)) this.refresh();
  }

  // While nothing is due, the next word shows when its time has come, and until then how long it takes.
  #renewInTime() {
    clearTimeout(this.#timer);
    const { card, nextDueAtMs, problem } = this.#session;
    if (card || (nextDueAtMs === null && !problem)) return;
    const waitMs = nextDueAtMs === null ? longestWaitMs : Math.max(0, nextDueAtMs - Date.now()) + dueMarginMs;
    this.#timer = setTimeout(() => this.refresh(), Math.min(waitMs, longestWaitMs));
  }

  /** The learner's language is another one. */
  forgetMeanings() {
    this.#lookUps.clear();
  }

  render() {
    const parts = this.#parts();
    // A button that is just being pressed stays.
    const isSame = !this.#session.card && parts.length === this.#root.children.length
      && parts.every((part, i) => part.isEqualNode(this.#root.children[i]));
    if (isSame) return;
    const hadFocus = this.#root.contains(this.#document.activeElement);
    this.#root.replaceChildren(...parts);
    if (hadFocus) this.focus();
  }

  /** Whether there is something to give the focus to. */
  focus() {
    const place = this.#root.querySelector('.card') ?? this.#root.querySelector('button');
    place?.focus();
    return Boolean(place);
  }

  /** The view has come: the line is heard. */
  shown() {
    this.#playLine();
  }

  /** Whether the key was one of the review's. */
  key(event) {
    const { card, isTurned, canUndo } = this.#session;
    const { key } = event;
    const letter = key.toLowerCase();
    const grade = grades[digitOf(event) - 1];
    if (letter === 'u' && canUndo) this.#undo();
    else if (!card) return false;
    else if (key === ' ' || key === 'Enter') this.#turn();
    else if (letter === 's') this.#playLine();
    else if (letter === 'w') this.#speak();
    else if (grade && isTurned) this.#grade(grade);
    else return Boolean(grade); // which would else lead to another view
    return true;
  }

  #turn() {
    this.#session.turn();
    this.render();
    this.focus();
    if (!this.#session.isTurned) this.#tools.say(this.#question());
  }

  async #grade(grade) {
    const { lemma, status } = this.#session.card;
    const outcome = outcomeText(intervalsOf(status)[grade]);
    await this.#change(this.#session.grade(grade), t('review.graded', { word: lemma, outcome }));
  }

  #undo() {
    return this.#change(this.#session.undo(), t('review.undone'));
  }

  async #tryAgain() {
    await this.refresh();
    if (this.#document.activeElement === this.#document.body) this.focus();
    this.#tools.say(this.#question());
  }

  async #change(step, said) {
    try {
      if (!await step) return;
    } catch (error) {
      this.#tools.trouble(error);
      this.render();
      return;
    }
    this.#tools.counted(this.#session.dueCount);
    this.#renewInTime();
    this.render();
    this.focus();
    this.#tools.say(`${said} ${this.#question()}`);
    this.#playLine();
  }

  /** What the front says, for who does not see it. */
  #question() {
    const { card, problem, gradedCount } = this.#session;
    if (card) return card.sighting?.line ?? card.lemma;
    return problem || endText(this.#hasWords, gradedCount);
  }

  #playLine() {
    const sound = this.#session.card?.sighting?.soundUrl;
    if (sound) this.#tools.play(sound);
  }

  async #speak() {
    if (!this.#session.isTurned) return; // the sound would tell half of the answer
    try {
      this.#tools.play((await this.#api.pronunciation(this.#session.card.lemma)).soundUrl);
    } catch (error) {
      this.#tools.trouble(error);
    }
  }

  #parts() {
    const { card, isLoaded, problem, isTurned, gradedCount, total, canUndo, nextDueAtMs } = this.#session;
    const undo = canUndo ? [undoButton(this.#document, () => this.#undo())] : [];
    if (card) {
      return [
        sittingPart(this.#document, gradedCount, total, ...undo), this.#cardPart(card, isTurned),
        isTurned ? gradePart(this.#document, card.status, (grade) => this.#grade(grade))
          : turnPart(this.#document, () => this.#turn()),
      ];
    }
    if (problem) return [problemPart(this.#document, problem, () => this.#tryAgain(), ...undo)];
    if (!isLoaded) return [];
    const waitMs = nextDueAtMs === null ? null : nextDueAtMs - Date.now();
    return [endPart(this.#document, { hasWords: this.#hasWords, gradedCount, waitMs }, ...undo)];
  }

  #cardPart(card, isTurned) {
    const part = create(this.#document, 'article', {
      className: isTurned ? 'card is-turned' : 'card', tabIndex: -1, 'aria-label': t('review.card'),
    }, frontPart(this.#document, card, () => this.#playLine()));
    if (isTurned) part.append(this.#backPart(card));
    return part;
  }

  #backPart(card) {
    const back = create(this.#document, 'div', {
      className: 'back', role: 'region', 'aria-live': 'polite', 'aria-label': t('review.meaning'),
    });
    // A live region tells only what comes into it once it is there.
    this.#meaning(card).then((told) => {
      back.append(...backParts(this.#document, card, told, this.#tools.learnerTag(), () => this.#speak()));
    });
    return back;
  }

  /** A promise that always keeps: what cannot be found is empty, and problem tells why nobody knows. */
  async #meaning({ lemma, gloss, sighting }) {
    const place = sighting && placeOfWord(sighting.line, sighting.form);
    const ask = () => (place ? this.#api.lookUp(sighting.line, place.start) : this.#api.lookUp(lemma, 0));
    const [lookup, { ipa }] = await Promise.all([
      this.#lookUps.of(lemma, ask).catch((error) => ({ problem: error.message })),
      this.#pronunciations.of(lemma, () => this.#api.pronunciation(lemma)).catch(() => ({ ipa: '' })),
    ]);
    const { translations, definition, pronunciation } = meaningOf(lookup, lemma);
    const meaning = gloss || translations.join(', ');
    return { meaning, definition, ipa: ipa || pronunciation, problem: lookup.problem };
  }
}
