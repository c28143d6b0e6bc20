// SPDX-License-Identifier: GPL-3.0-or-later

// Says in the learner's language what the page has in English, where the service answers.

import { ServiceApi } from '../shared/api.mjs';
import { speak, t, translate } from '../shared/texts.mjs';

try {
  await speak((await ServiceApi.ofPage(document).settings()).nativeLanguage);
  translate(document);
  document.title = `Murvo: ${t('account.title')}`;
} catch (error) {
  console.warn(error.message);
}
