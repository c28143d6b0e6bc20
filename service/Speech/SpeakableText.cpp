// SPDX-License-Identifier: GPL-3.0-or-later
#include "Speech/SpeakableText.h"

#include <QList>

#include <algorithm>

namespace murvo::service {

SpeakableText speakableText(const QString &asked) {
    QString text = asked;
    text.replace(QChar::ReplacementCharacter, u' ');
    text = text.simplified();
    // Half of a pair is no character either.
    const auto letters = QString::fromUtf8(text.toUtf8()).toUcs4();
    const auto any = [&letters](auto is) { return std::any_of(letters.begin(), letters.end(), is); };
    if (letters.isEmpty())
        return {{}, TextFault::Empty};
    if (letters.size() > longestSpokenText)
        return {{}, TextFault::TooLong};
    if (any([](char32_t letter) { return QChar::category(letter) == QChar::Other_Control; }))
        return {{}, TextFault::ControlCharacter};
    if (!any([](char32_t letter) { return QChar::isLetterOrNumber(letter); }))
        return {{}, TextFault::NothingToSay};
    return {text, TextFault::None};
}

} // namespace murvo::service
