// SPDX-License-Identifier: GPL-3.0-or-later

// Where in the film there is speech: a thin strip along the seek bar, made once for a track and a width.

// How much of the strip shows where nobody speaks.
const silence = 0.38;

/** How much of each of so many equal parts of the film is speech, 0 to 1. cues: by start. */
export function speechShares(cues, durationMs, parts) {
  const shares = new Float32Array(parts);
  const partMs = durationMs / parts;
  let spokenUntil = 0;
  for (const { startMs, endMs } of cues) {
    const start = Math.max(startMs, spokenUntil); // lines may overlap
    const end = Math.min(endMs, durationMs);
    if (end <= start) continue;
    spokenUntil = end;
    for (let part = Math.floor(start / partMs); part < parts && part * partMs < end; part += 1) {
      shares[part] += (Math.min(end, (part + 1) * partMs) - Math.max(start, part * partMs)) / partMs;
    }
  }
  return shares;
}

/**
 * Draws the strip in a colour ([red, green, blue], 0 to 255), a column of pixels for each share; what is silent shines
 * through. Without cues all of it is as bright as speech.
 */
export function drawSpeech(canvas, cues, durationMs, columns, [red, green, blue]) {
  const isKnown = cues.length > 0 && durationMs > 0;
  const shares = isKnown ? speechShares(cues, durationMs, columns) : new Float32Array(columns).fill(1);
  canvas.width = columns;
  canvas.height = 1;
  const context = canvas.getContext('2d');
  const image = context.createImageData(columns, 1);
  shares.forEach((share, i) => {
    image.data.set([red, green, blue, Math.round(255 * (silence + (1 - silence) * Math.min(1, share)))], 4 * i);
  });
  context.putImageData(image, 0, 0);
}
