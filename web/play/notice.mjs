// SPDX-License-Identifier: GPL-3.0-or-later

/** What to tell the learner about the film's subtitles; empty when all is well. */
export function noticeOf({ fileName, learned, native, unusable }) {
  if (learned && native) return '';
  const bad = unusable.find((track) => track.error);
  if (bad) return `${bad.fileName}: ${bad.error.message}`;
  if (learned || native) return '';
  if (!fileName) return 'No subtitles are known for this film.';
  const dot = fileName.lastIndexOf('.');
  const base = dot > 0 ? fileName.slice(0, dot) : fileName;
  return `No subtitles were found beside this film. Put ${base}.en.srt next to it and open it again.`;
}

const patienceMs = 20_000;

/** What to say of a film that should run and has been silent for so long. */
export function waitingText(silenceMs) {
  if (silenceMs < patienceMs) return 'Waiting for the film…';
  return 'Still waiting for the film. Its server may be gone; you can open another film.';
}
