// SPDX-License-Identifier: GPL-3.0-or-later

// The page's views, of which one shows, and their tabs.

const steps = { ArrowDown: 1, ArrowUp: -1 };

export class Views {
  #tabs;
  #panels;
  #changed;
  current;

  /** names: of panels by their id, each with a tab "tab-NAME"; changed(name) after another has come. */
  constructor(document, names, changed) {
    this.#tabs = new Map(names.map((name) => [name, document.getElementById(`tab-${name}`)]));
    this.#panels = new Map(names.map((name) => [name, document.getElementById(name)]));
    this.#changed = changed;
    [this.current] = names;
    for (const [name, tab] of this.#tabs) {
      tab.addEventListener('click', () => this.show(name));
      tab.addEventListener('keydown', (event) => this.#keyOnTab(event));
    }
  }

  get names() {
    return [...this.#tabs.keys()];
  }

  show(name) {
    this.current = name;
    for (const [each, tab] of this.#tabs) {
      tab.setAttribute('aria-selected', String(each === name));
      tab.tabIndex = each === name ? 0 : -1;
      this.#panels.get(each).hidden = each !== name;
    }
    this.#changed(name);
  }

  focusTab() {
    this.#tabs.get(this.current).focus();
  }

  #keyOnTab(event) {
    const { names } = this;
    const fromRightToLeft = event.currentTarget.ownerDocument.documentElement.dir === 'rtl';
    const sideways = { ArrowRight: fromRightToLeft ? -1 : 1, ArrowLeft: fromRightToLeft ? 1 : -1 };
    const step = steps[event.key] ?? sideways[event.key] ?? 0;
    const ends = { Home: 0, End: names.length - 1 };
    const at = ends[event.key] ?? (names.indexOf(this.current) + step + names.length) % names.length;
    if (!step && !(event.key in ends)) return;
    event.preventDefault();
    this.show(names[at]);
    this.focusTab();
  }
}
