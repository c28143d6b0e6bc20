// SPDX-License-Identifier: GPL-3.0-or-later

/** Replaces setTimeout for the length of a test; time passes only by pass(). */
export class FakeTimers {
  now = 0;
  longestDelay = 0;
  #timers = new Map();
  #next = 1;

  constructor(context) {
    const { setTimeout, clearTimeout } = globalThis;
    globalThis.setTimeout = (call, delay = 0) => {
      this.longestDelay = Math.max(this.longestDelay, delay);
      this.#timers.set(this.#next, { call, at: this.now + delay });
      return this.#next++;
    };
    globalThis.clearTimeout = (id) => this.#timers.delete(id);
    context.after(() => Object.assign(globalThis, { setTimeout, clearTimeout }));
  }

  pass(milliseconds) {
    const end = this.now + milliseconds;
    for (;;) {
      const due = [...this.#timers].filter(([, { at }]) => at <= end).sort(([, a], [, b]) => a.at - b.at)[0];
      if (!due) break;
      this.#timers.delete(due[0]);
      this.now = Math.max(this.now, due[1].at);
      due[1].call();
    }
    this.now = end;
  }
}
