// SPDX-License-Identifier: GPL-3.0-or-later

import { button, create } from '../../shared/elements.mjs';
import { t } from '../../shared/texts.mjs';
import { timeText } from '../../shared/timetext.mjs';
import { titleTexts } from '../films/filmcard.mjs';
import { placeOfWord, showMarked } from '../marking.mjs';
import { grades, intervalsOf, lengthText, outcomeText } from './intervals.mjs';
import { meaningOf } from './meaning.mjs';
import { ReviewSession } from './reviewsession.mjs';

/** The review: a card at a time, first the line in which the word was met, then what it means. */
export class ReviewView {
  #document;
  #api;
  #tools;
  #session;
  #root;
  #looked = new Map(); // lemma -> promise of what the back of its card tells
  #hasWords = true;

  /** tools: { play(soundUrl), say(text), trouble(error), counted(dueCount), toWords() }. */
  constructor(document, api, tools) {
    this.#document = document;
    this.#api = api;
    this.#tools = tools;
    this.#session = new ReviewSession(api);
    this.#root = document.getElementById('review');
  }

  /** Whether the keys 1 to 4 are grades now. */
  get isAsking() {
    return this.#session.card !== null;
  }

  /** What is due now; the card that shows stays. */
  async refresh() {
    try {
      await this.#session.load();
      this.#hasWords = this.isAsking || (await this.#api.words({ count: 1 })).total > 0;
      this.#tools.counted(this.#session.dueCount);
    } catch (error) {
      this.#tools.trouble(error);
    }
    this.render();
  }

  /** The learner's language is another one. */
  forgetMeanings() {
    this.#looked.clear();
  }

  render() {
    const hadFocus = this.#root.contains(this.#document.activeElement);
    const { card } = this.#session;
    this.#root.replaceChildren(...(card ? this.#cardParts(card) : [this.#endPart()]));
    if (hadFocus) this.focus();
  }

  focus() {
    (this.#root.querySelector('.card') ?? this.#root.querySelector('button'))?.focus();
  }

  /** The view has come: the first line is heard. */
  shown() {
    this.#playLine();
  }

  /** Whether the key was one of the review's. */
  key({ key }) {
    const { card, isTurned } = this.#session;
    const grade = grades[Number(key) - 1];
    if (key.toLowerCase() === 'u' && this.#session.canUndo) this.#undo();
    else if (!card) return false;
    else if (key === ' ' || key === 'Enter') this.#turn();
    else if (key.toLowerCase() === 's') this.#playLine();
    else if (key.toLowerCase() === 'w') this.#speak();
    else if (grade && isTurned) this.#grade(grade);
    else return Boolean(grade);
    return true;
  }

  #turn() {
    this.#session.turn();
    this.render();
    this.focus();
    if (!this.#session.isTurned) this.#tools.say(this.#session.card.sighting?.line ?? this.#session.card.lemma);
  }

  async #grade(grade) {
    const { card } = this.#session;
    const outcome = outcomeText(intervalsOf(card.status)[grade]);
    await this.#change(() => this.#session.grade(grade), t('review.graded', { word: card.lemma, outcome }));
  }

  #undo() {
    return this.#change(() => this.#session.undo(), t('review.undone'));
  }

  async #change(work, said) {
    try {
      await work();
    } catch (error) {
      this.#tools.trouble(error);
      return;
    }
    this.#tools.counted(this.#session.dueCount);
    this.render();
    this.focus();
    const { card } = this.#session;
    this.#tools.say(`${said} ${card ? card.sighting?.line ?? card.lemma : t('review.done')}`);
    this.#playLine();
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

  #make(...rest) {
    return create(this.#document, ...rest);
  }

  #cardParts(card) {
    const { gradedCount, total, isTurned } = this.#session;
    const filled = this.#make('span', {});
    filled.style.width = `${(100 * gradedCount) / Math.max(1, total)}%`;
    const place = t('review.place', { at: gradedCount + 1, total });
    const undo = button(this.#document, { className: 'plain', title: t('home.undoKey') }, () => this.#undo(), t('home.undo'));
    undo.hidden = !this.#session.canUndo;
    return [
      this.#make('div', { className: 'sitting' },
        this.#make('span', {
          className: 'way', role: 'progressbar', 'aria-label': place, 'aria-valuemin': 0, 'aria-valuemax': total,
          'aria-valuenow': gradedCount,
        }, filled),
        this.#make('span', { className: 'place', textContent: place }), undo),
      this.#cardPart(card, isTurned),
      isTurned ? this.#gradePart(card) : this.#turnPart(),
    ];
  }

  #cardPart(card, isTurned) {
    const { sighting } = card;
    const line = this.#make('p', { className: 'line', lang: 'en', dir: 'auto' });
    if (sighting) {
      const place = placeOfWord(sighting.line, sighting.form);
      showMarked(line, sighting.line, place ? [place] : []);
    } else {
      line.append(this.#make('mark', { textContent: card.lemma }));
    }
    const part = this.#make('article', { className: isTurned ? 'card is-turned' : 'card', tabIndex: -1, 'aria-label': t('review.card') },
      this.#make('div', { className: 'front' }, line, ...(sighting ? [this.#filmPart(sighting)] : [])));
    if (isTurned) part.append(this.#backPart(card));
    return part;
  }

  #filmPart(sighting) {
    const { title, detail } = titleTexts(sighting.fileName);
    const text = [title, detail, timeText(sighting.startMs)].filter(Boolean).join(' · ');
    const part = this.#make('div', { className: 'of-film' }, this.#make('span', { dir: 'auto', textContent: text }));
    if (sighting.soundUrl) part.prepend(this.#soundButton(t('review.hear'), 'S', () => this.#playLine()));
    return part;
  }

  #soundButton(label, key, pressed) {
    return button(this.#document, { className: 'sound', ariaLabel: label, title: `${label} (${key})` }, pressed);
  }

  #backPart(card) {
    const back = this.#make('div', { className: 'back', role: 'region', 'aria-live': 'polite', 'aria-label': t('review.meaning') });
    this.#meaning(card).then((told) => {
      back.append(
        this.#make('p', { className: 'word' },
          this.#make('b', { lang: 'en', textContent: card.lemma }),
          ...(told.ipa ? [this.#make('span', { className: 'ipa', lang: 'en', textContent: `/${told.ipa}/` })] : []),
          this.#soundButton(t('review.speak'), 'W', () => this.#speak())),
        this.#make('p', { className: 'meaning', dir: 'auto', textContent: told.meaning || t('review.noMeaning') }));
      if (card.sighting?.translation) {
        back.append(this.#make('p', { className: 'translation', dir: 'auto', textContent: card.sighting.translation }));
      }
      if (told.definition) back.append(this.#make('p', { className: 'definition', lang: 'en', textContent: told.definition }));
    });
    return back;
  }

  /** A promise that always keeps: what cannot be found is empty. */
  #meaning(card) {
    const { lemma, gloss, sighting } = card;
    if (!this.#looked.has(lemma)) {
      const place = sighting && placeOfWord(sighting.line, sighting.form);
      this.#looked.set(lemma, Promise.all([
        (place ? this.#api.lookUp(sighting.line, place.start) : this.#api.lookUp(lemma, 0)).catch(() => ({})),
        this.#api.pronunciation(lemma).catch(() => ({ ipa: '' })),
      ]));
    }
    return this.#looked.get(lemma).then(([lookup, { ipa }]) => {
      const { translations, definition, pronunciation } = meaningOf(lookup, lemma);
      return { meaning: gloss || translations.join(', '), definition, ipa: ipa || pronunciation };
    });
  }

  #turnPart() {
    return this.#make('div', { className: 'turn' },
      button(this.#document, { className: 'main' }, () => this.#turn(), t('review.turn'), this.#make('kbd', { textContent: t('key.space') })));
  }

  #gradePart(card) {
    const intervals = intervalsOf(card.status);
    return this.#make('div', { className: 'grades', role: 'group', 'aria-label': t('review.howWell') }, ...grades.map((grade, i) =>
      button(this.#document, { className: `grade ${grade}`, 'aria-keyshortcuts': String(i + 1) }, () => this.#grade(grade),
        this.#make('kbd', { textContent: String(i + 1), ariaHidden: 'true' }),
        this.#make('b', { textContent: t(`review.grade.${grade}`) }),
        this.#make('span', { textContent: outcomeText(intervals[grade]) }))));
  }

  #endPart() {
    const { gradedCount, nextDueAtMs, canUndo, isLoaded } = this.#session;
    const make = (...rest) => this.#make(...rest);
    if (!isLoaded) return make('div', { className: 'end' });
    const next = nextDueAtMs === null ? '' : t('review.next', { time: lengthText(Math.max(0, nextDueAtMs - Date.now())) });
    const title = t(this.#hasWords ? 'review.done' : 'review.noWords');
    const end = make('div', { className: 'end' }, picture(this.#document),
      make('h3', { textContent: title }),
      make('p', { textContent: this.#hasWords ? next : t('review.howWords') }));
    if (gradedCount > 0) end.append(make('p', { className: 'quiet', textContent: t('review.count', { count: gradedCount }) }));
    if (canUndo) end.append(button(this.#document, { className: 'plain', title: t('home.undoKey') }, () => this.#undo(), t('home.undo')));
    return end;
  }
}

const svgName = 'http://www.w3.org/2000/svg';

// A calm sea with the sun above it.
function picture(document) {
  const svg = document.createElementNS(svgName, 'svg');
  svg.setAttribute('viewBox', '0 0 96 56');
  svg.setAttribute('aria-hidden', 'true');
  svg.setAttribute('class', 'sea');
  for (const path of ['M30 34a18 18 0 0 1 36 0', 'M6 34h84', 'M20 42h56', 'M34 50h28']) {
    const drawn = document.createElementNS(svgName, 'path');
    drawn.setAttribute('d', path);
    svg.append(drawn);
  }
  return svg;
}
