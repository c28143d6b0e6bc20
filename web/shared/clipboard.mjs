// SPDX-License-Identifier: GPL-3.0-or-later

/** Puts a text onto the clipboard; only while a key or press of the user is being handled. Returns whether it did. */
export function copyText(document, text) {
  document.addEventListener('copy', (event) => {
    event.clipboardData.setData('text/plain', text);
    event.preventDefault();
  }, { once: true });
  return document.execCommand('copy');
}
