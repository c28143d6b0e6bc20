// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace murvo::service {

constexpr qsizetype longestSpokenText = 300; ///< characters; a long line of a film has about 100

enum class TextFault { None, Empty, TooLong, ControlCharacter, NothingToSay };

/// A text as it is spoken, or why it is not: white space, line breaks with it, becomes single blanks, and
/// what was no valid UTF-8 is left out.
struct SpeakableText {
    QString text;
    TextFault fault = TextFault::None;
};

[[nodiscard]] SpeakableText speakableText(const QString &asked);

} // namespace murvo::service
