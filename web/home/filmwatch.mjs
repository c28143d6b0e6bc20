// SPDX-License-Identifier: GPL-3.0-or-later

// A film that the desktop hands to the player waits there until the home page says that it is ready. The service
// tells this page that one waits, also while the page lies hidden under another film.

const retryPauseMs = 1000;

/**
 * Calls sayReady() once, and again for each film that comes to wait; for ever.
 * api: a ServiceApi. pause(ms): a promise, for the time after a failure of the service.
 */
export async function watchForFilms(api, sayReady, pause = (ms) => new Promise((go) => { setTimeout(go, ms); })) {
  let known = await api.pendingFilms().catch(() => 0); // asked first, so that no film falls between
  sayReady();
  for (;;) {
    try {
      const count = await api.pendingFilms(known);
      if (count !== known) sayReady();
      known = count;
    } catch {
      await pause(retryPauseMs);
    }
  }
}
