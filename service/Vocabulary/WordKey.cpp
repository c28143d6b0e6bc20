// SPDX-License-Identifier: GPL-3.0-or-later
#include "Vocabulary/WordKey.h"

#include <QList>

#include <algorithm>

namespace murvo::service {

namespace {

constexpr qsizetype longestWord = 100;

// A soft hyphen, a mark of direction: two words that differ in them look the same.
bool isFormat(QChar letter) {
    return letter.category() == QChar::Other_Format;
}

bool isUnseen(char32_t letter) {
    const QChar::Category category = QChar::category(letter);
    return category == QChar::Other_Control || category == QChar::Other_NotAssigned ||
           category == QChar::Other_PrivateUse || category == QChar::Other_Surrogate;
}

} // namespace

std::optional<QString> wordKey(const QString &text) {
    if (text.size() > 4 * longestWord || !text.isValidUtf16())
        return std::nullopt;
    QString key = text.normalized(QString::NormalizationForm_C).removeIf(isFormat).toLower().simplified();
    key.replace(QChar(u'\u2019'), u'\'').replace(QChar(u'\u2018'), u'\'');
    if (key.count(u'.') == 1 && key.endsWith(u'.')) // "Mr."; not "p.m."
        key.chop(1);
    const auto letters = key.toUcs4();
    const bool isWord =
        key.size() <= longestWord && std::none_of(letters.begin(), letters.end(), isUnseen) &&
        std::any_of(letters.begin(), letters.end(), [](char32_t letter) { return QChar::isLetter(letter); });
    return isWord ? std::optional(key) : std::nullopt;
}

} // namespace murvo::service
