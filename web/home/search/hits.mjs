// SPDX-License-Identifier: GPL-3.0-or-later

const pageSize = 30;

/** The lines that a search has found so far, by film, and the next page of them. It knows no element. */
export class Hits {
  #api;
  #query = null;
  #next = null;
  #generation = 0;
  #shown = 0; // the search whose lines these are; another than #generation while a later one is under way
  #loading = null; // the search of which a page is under way
  groups = [];
  count = 0;

  constructor(api) {
    this.#api = api;
  }

  /** { text, language, wholeWord }, or null when nothing is searched. */
  get query() {
    return this.#query;
  }

  get hasMore() {
    return this.#next !== null;
  }

  /** Begins anew; atLeast: how many lines to fetch if there are so many. Throws with a sentence. */
  async search(query, atLeast = 1) {
    this.#generation += 1;
    const generation = this.#generation;
    const lines = [];
    let next = null;
    try {
      do {
        if (!query.text.trim()) break;
        const reply = await this.#api.searchLines(query.text, { ...query, below: next ?? undefined, count: pageSize });
        if (generation !== this.#generation) return false;
        lines.push(...reply.lines);
        next = reply.next;
      } while (next !== null && lines.length < atLeast);
    } finally {
      // After a failure too: what shows is still the earlier one's, and can go on.
      if (generation === this.#generation) this.#shown = generation;
    }
    this.#query = query.text.trim() ? query : null;
    this.#next = next;
    this.count = lines.length;
    this.groups = grouped([], lines);
    return true;
  }

  /** Settles with whether there were more. */
  async more() {
    const generation = this.#generation;
    if (!this.hasMore || this.#shown !== generation || this.#loading === generation) return false;
    this.#loading = generation;
    try {
      const page = { ...this.#query, below: this.#next, count: pageSize };
      const { lines, next } = await this.#api.searchLines(this.#query.text, page);
      if (generation !== this.#generation) return false;
      this.#next = next;
      this.count += lines.length;
      this.groups = grouped(this.groups, lines);
      return true;
    } finally {
      if (this.#loading === generation) this.#loading = null;
    }
  }
}

/** Groups { videoId, fileName, lines } with more lines put in: those of a film together, as they come. */
export function grouped(groups, lines) {
  const all = groups.map((group) => ({ ...group, lines: [...group.lines] }));
  const byFilm = new Map(all.map((group) => [group.videoId, group]));
  for (const line of lines) {
    let group = byFilm.get(line.videoId);
    if (!group) {
      group = { videoId: line.videoId, fileName: line.fileName, lines: [] };
      byFilm.set(line.videoId, group);
      all.push(group);
    }
    group.lines.push(line);
  }
  return all;
}
