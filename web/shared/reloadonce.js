// SPDX-License-Identifier: GPL-3.0-or-later

// Loads the page once more when one of its scripts or styles does not arrive: without them it is dead. It must come
// before them, and be no module, which could not watch over its own arrival. A page that is already loaded again stays
// as it is.

(() => {
  const isSecondTry = performance.getEntriesByType('navigation')[0]?.type === 'reload';
  if (isSecondTry) return;
  document.addEventListener('error', (event) => {
    if (event.target.matches('script, link')) location.reload();
  }, true);
})();
