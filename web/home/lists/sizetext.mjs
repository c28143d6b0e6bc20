// SPDX-License-Identifier: GPL-3.0-or-later

import { t } from '../../shared/texts.mjs';

export function sizeText(bytes) {
  return bytes < 1_000_000 ? t('lists.kilobytes', { size: Math.max(1, Math.round(bytes / 1000)) })
    : t('lists.megabytes', { size: Math.round(bytes / 100_000) / 10 });
}
