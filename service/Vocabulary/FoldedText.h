// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace murvo::service {

/// The text as it is compared where neither case nor accents count.
[[nodiscard]] inline QString foldedText(const QString &text) {
    QString folded = text.normalized(QString::NormalizationForm_KD).toCaseFolded();
    folded.removeIf([](QChar sign) { return sign.category() == QChar::Mark_NonSpacing; });
    return folded.replace(u'\u2019', u'\'');
}

} // namespace murvo::service
