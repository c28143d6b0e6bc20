// SPDX-License-Identifier: GPL-3.0-or-later

import { t } from '../../shared/texts.mjs';
import { keyText } from './keymap.mjs';

/** A combination as the learner reads it, in the interface's language. */
export const keyName = (text) => keyText(text, t('key.space'));
