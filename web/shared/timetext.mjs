// SPDX-License-Identifier: GPL-3.0-or-later

/** A time as people read it: 4:07, or 1:04:07 from an hour on. */
export function timeText(milliseconds) {
  const seconds = Math.max(0, Math.floor(milliseconds / 1000));
  const pad = (number) => String(number).padStart(2, '0');
  const hours = Math.floor(seconds / 3600);
  const minutes = Math.floor(seconds / 60) % 60;
  return hours > 0 ? `${hours}:${pad(minutes)}:${pad(seconds % 60)}` : `${minutes}:${pad(seconds % 60)}`;
}
