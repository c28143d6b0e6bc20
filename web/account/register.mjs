// SPDX-License-Identifier: GPL-3.0-or-later

// Says in the language of the other pages what this one has in English, where the service answers.

import { ServiceApi } from '../shared/api.mjs';
import { Preferences, interfaceDefaults } from '../shared/preferences.mjs';
import { languageFor, speak, t, translate } from '../shared/texts.mjs';

const api = ServiceApi.ofPage(document);
const preferences = new Preferences(api, { interface: interfaceDefaults });

try {
  const [{ nativeLanguage }] = await Promise.all([api.settings(), preferences.load()]);
  await speak(languageFor(preferences.get('interface'), nativeLanguage, navigator.language));
  translate(document);
  document.title = `Murvo: ${t('account.title')}`;
} catch (error) {
  console.warn(error.message);
}
