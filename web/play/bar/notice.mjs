// SPDX-License-Identifier: GPL-3.0-or-later

import { trackName } from '../lines/subtitles.mjs';

/** What to tell the learner about the film's subtitles; empty when all is well. */
export function noticeOf({ fileName, tracks, trouble, isLoaded, isReadingFilm, readPercent }, shownLines) {
  if (trouble && shownLines === 0) return `No lines: ${trouble}`;
  if (shownLines === 2 || !isLoaded) return '';
  const bad = tracks.find((track) => track.error);
  if (bad) return `${trackLabel(bad)}: ${bad.error.message}`;
  if (isReadingFilm && shownLines === 0) return `Reading the film’s own subtitles… ${readPercent} %`;
  if (shownLines > 0 || tracks.length > 0) return '';
  if (!fileName) return 'No subtitles are known for this film.';
  const dot = fileName.lastIndexOf('.');
  const base = dot > 0 ? fileName.slice(0, dot) : fileName;
  return `No subtitles were found in or beside this film. Add a file under Subtitles, or put ${base}.en.srt next to it `
    + 'and open it again.';
}

const trackLabel = (track) => track.fileName || trackName(track);

const patienceMs = 20_000;

/** What to say of a film that should run and has been silent for so long. */
export function waitingText(silenceMs) {
  if (silenceMs < patienceMs) return 'Waiting for the film…';
  return 'Still waiting for the film. Its server may be gone; you can open another film.';
}
