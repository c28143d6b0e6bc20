// SPDX-License-Identifier: GPL-3.0-or-later
#include "Vocabulary/FoldedText.h"

#include <QList>

namespace murvo::service {

namespace {

// Where a word is read, and often written, without its marks.
bool hasAccents(QChar::Script script) {
    switch (script) {
    case QChar::Script_Latin:
    case QChar::Script_Greek:
    case QChar::Script_Cyrillic:
    case QChar::Script_Arabic:
    case QChar::Script_Hebrew:
        return true;
    default:
        return false;
    }
}

} // namespace

QString foldedText(const QString &text) {
    QList<uint> signs = text.normalized(QString::NormalizationForm_KD).toCaseFolded().toUcs4();
    bool isBehindSuch = false;
    signs.removeIf([&isBehindSuch](uint sign) {
        if (QChar::category(sign) == QChar::Mark_NonSpacing)
            return isBehindSuch;
        isBehindSuch = hasAccents(QChar::script(sign));
        return false;
    });
    const QString folded =
        QString::fromUcs4(reinterpret_cast<const char32_t *>(signs.constData()), signs.size());
    // Letters that keep their marks become one sign again: without them they are others.
    return folded.normalized(QString::NormalizationForm_C).replace(u'\u2019', u'\'');
}

} // namespace murvo::service
