// SPDX-License-Identifier: GPL-3.0-or-later

// Where the film is now, between the player's reports. Times of the film in milliseconds; "now" is always a
// monotonic clock's reading in milliseconds, given by the caller: nothing here reads a clock.

// A report comes every 250-280 ms; when none has come for this long, the film stands, whatever the page believes.
const longestGapMs = 700;
// Further ahead than this, the film has been moved. Further behind it may have been, or the report is late: then the
// next ones are not.
const jumpMs = 300;
const lateReports = 2;
// While paused, a late report of the time just before the pause must not move the lines.
const pausedJumpMs = 400;
const samplesKept = 5;
// Of the moment of a start or a new speed only the page's own command is known; two reports know it better.
const reportsForStart = 2;
// After a seek, reports of the old place still arrive; a new place that never does is believed after this time.
const longestSeekMs = 1500;
const seekSlackMs = 300;

export class PlaybackClock {
  #running = true;
  #speed = 1;
  #samples = []; // { position, at, isGuess }: the latest reports since the last jump
  #behind = 0; // how many reports in a row were far behind
  #standing = null; // the position while nothing runs; null before the first report
  #latest = null; // what was last told while running: the film never runs backwards between jumps
  #seek = null; // { target, at } until a report from there

  /** The player says that the film is at position. */
  report(position, now) {
    if (this.#seek && !this.#endsSeek(position, now)) return;
    if (!this.#running) {
      const known = this.#standing;
      if (known === null || this.#seek || Math.abs(position - known) > pausedJumpMs) this.#standing = position;
      this.#seek = null;
      return;
    }
    // After a stall the reports from before it say nothing of now.
    const anew = this.#seek !== null || this.#samples.length === 0 || this.stalled(now);
    const aheadMs = anew ? 0 : position - this.#estimate(now);
    this.#behind = aheadMs < -jumpMs ? this.#behind + 1 : 0;
    const jumped = anew || aheadMs > jumpMs || this.#behind > lateReports;
    this.#seek = null;
    if (jumped) this.#startFrom(position, now);
    else this.#add({ position, at: now });
  }

  #add(sample) {
    this.#samples = [...this.#samples, sample].slice(-samplesKept);
    const reports = this.#samples.filter(({ isGuess }) => !isGuess);
    if (reports.length >= reportsForStart) this.#samples = reports;
  }

  /** The page has told the player to play (true) or pause; stands: where it then stands, if that is known better. */
  setRunning(running, now, stands = this.position(now)) {
    if (running === this.#running) return;
    this.#standing = stands;
    this.#running = running;
    this.#samples = [];
    this.#latest = null;
    if (running && this.#standing !== null && !this.#seek) this.#startFrom(this.#standing, now, true);
  }

  setSpeed(speed, now) {
    const position = this.position(now);
    const standsSince = this.stalled(now) ? this.#samples[this.#samples.length - 1].at : null;
    this.#speed = speed;
    if (standsSince !== null) this.#standAt(position, standsSince);
    else if (this.#running && position !== null && !this.#seek) this.#startFrom(position, now, true);
  }

  /** The page has told the player to go to position: it counts at once, and reports of the old place do not. */
  seek(position, now) {
    this.#seek = { target: position, at: now };
    this.#standing = position;
    this.#samples = [];
    this.#latest = null;
  }

  /** Null before the first report. */
  position(now) {
    if (!this.#running || this.#seek || this.#samples.length === 0) return this.#standing;
    const estimate = this.#estimate(now);
    this.#latest = this.#latest === null ? estimate : Math.max(this.#latest, estimate);
    return this.#latest;
  }

  /** True while the position moves by itself, so that a moment in the future can be computed. */
  moves(now) {
    return this.#running && !this.#seek && this.#samples.length > 0 && this.#sinceReport(now) < longestGapMs;
  }

  /** True when the film should run but has stopped telling where it is. */
  stalled(now) {
    return this.#running && this.#samples.length > 0 && this.#sinceReport(now) >= longestGapMs;
  }

  get running() {
    return this.#running;
  }

  get speed() {
    return this.#speed;
  }

  #startFrom(position, now, isGuess = false) {
    this.#samples = [{ position, at: now, isGuess }];
    this.#standing = position;
    this.#latest = null;
    this.#behind = 0;
  }

  // As if the last report, at that moment, had been such that the film now stands at position.
  #standAt(position, lastReportAt) {
    this.#startFrom(position - longestGapMs * this.#speed, lastReportAt);
  }

  #sinceReport(now) {
    return now - this.#samples[this.#samples.length - 1].at;
  }

  // Each report says where the film would be now. Reports are late, some of them much, and hardly ever early: the
  // foremost is right, or the one behind it where a single one is off.
  #estimate(now) {
    const until = Math.min(now, this.#samples[this.#samples.length - 1].at + longestGapMs);
    const told = this.#samples.map(({ position, at }) => position + (until - at) * this.#speed);
    told.sort((a, b) => b - a);
    return told[told.length > 2 ? 1 : 0];
  }

  #endsSeek(position, now) {
    const { target, at } = this.#seek;
    const elapsed = now - at;
    if (elapsed > longestSeekMs) return true;
    return position >= target - seekSlackMs && position <= target + elapsed * this.#speed + seekSlackMs;
  }
}
