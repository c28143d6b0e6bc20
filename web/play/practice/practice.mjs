// SPDX-License-Identifier: GPL-3.0-or-later

import { fromLeftToRight } from '../../shared/direction.mjs';
import { keyName } from '../../shared/keyname.mjs';
import { t } from '../../shared/texts.mjs';
import { LineTools } from './linetools.mjs';
import { PracticeMarks } from './practicemarks.mjs';
import { PracticePanel } from './practicepanel.mjs';

const noLine = 'practice.noLine';

/** The line tools as the learner meets them: keys, panel, and the marks that tell what is on. */
export class Practice {
  #tools;
  #film;
  #preferences;
  #say;
  #keyOf;
  #panel;
  #marks;

  /**
   * panels: SidePanels; keyOf(action): its key combination, or undefined; say(text): a short word over the picture;
   * isHeld(): see LineTools.
   */
  constructor(document, { film, preferences, panels, keyOf, now, say, isHeld }) {
    this.#film = film;
    this.#preferences = preferences;
    this.#say = say;
    this.#keyOf = keyOf;
    this.#tools = new LineTools(film, preferences, now, {
      say: (key, values) => say(t(key, values)),
      changed: () => this.show(),
      isHeld,
    });
    this.#marks = new PracticeMarks(document, this.actions);
    this.#panel = new PracticePanel(document, panels, preferences, this.actions, keyOf);
    preferences.onChange(() => this.show());
  }

  /** By the names of the key map. */
  actions = {
    autoPause: () => this.#switch('autoPause'),
    condensed: () => this.#switch('condensed'),
    fastGaps: () => this.#switch('fastGaps'),
    replayThenPause: () => this.#ask('replayThenPause'),
    playToNextEnd: () => this.#ask('playToNextEnd'),
    loopLine: () => this.#toggleRun('loopLine', 'loop'),
    drill: () => this.#toggleRun('drill', 'drill'),
    loopSection: () => this.#tools.ask('loopSection'),
    practicePanel: () => this.#panel.toggle(),
  };

  /** isHard(cue): whether it has a word that the learner does not know; to be called again when that changes. */
  setHard(isHard) {
    this.#tools.setHard(isHard);
  }

  /** A step between lines; false where no tool goes along. step: as Film.stepLine() has it. */
  step(step) {
    return this.#tools.ask({ '-1': 'previousLine', 0: 'replayLine', 1: 'nextLine' }[step]);
  }

  /** To be called after changes of the subtitles. line: the track that the tools go by, or null. */
  load(cues, line) {
    this.#tools.load(cues ?? [], line?.subtitleId ?? null);
    this.show();
  }

  /** The speed that the learner has set, also while a tool plays the film at another. */
  get ownSpeed() {
    return this.#tools.ownSpeed;
  }

  set ownSpeed(speed) {
    this.#tools.ownSpeed = speed;
  }

  /** To be called whenever the film's time may have changed otherwise than by running on. */
  update() {
    this.#tools.update();
  }

  show() {
    const shown = { ...this.#tools.state, settings: this.#tools.settings, hasLines: this.#tools.hasLines };
    this.#marks.show(shown);
    this.#panel.show(shown);
  }

  #switch(name) {
    const isOn = !this.#preferences.get('practice')[name];
    this.#preferences.change('practice', { [name]: isOn });
    this.#tell(name, isOn);
  }

  #toggleRun(request, kind) {
    if (!this.#ask(request)) return;
    this.#tell(request, this.#tools.state.run?.kind === kind);
  }

  #ask(request) {
    const isDone = this.#tools.ask(request);
    if (!isDone) this.#say(t(noLine));
    else if (request === 'replayThenPause' || request === 'playToNextEnd') this.#tellOnce(request);
    return isDone;
  }

  // At the first time what it does, later that it is on.
  #tell(name, isOn) {
    if (isOn && this.#tellOnce(name)) return;
    this.#say(t(isOn ? 'practice.isOn' : 'practice.isOff', { name: t(`practice.${name}`) }));
  }

  #tellOnce(name) {
    const { told } = this.#preferences.get('practice');
    if (told.includes(name)) return false;
    this.#preferences.change('practice', { told: [...told, name] });
    const key = this.#keyOf('togglePlay');
    this.#say(t(`practice.${name}.does`, { key: key ? fromLeftToRight(keyName(key)) : t('bar.play') }));
    return true;
  }
}
