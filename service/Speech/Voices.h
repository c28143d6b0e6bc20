// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringView>

namespace murvo::service {

/// The synthesizer's name of the voice for a language (ISO 639-2/T); for English "us" or "gb" chooses the
/// accent, for others it says nothing. Null when there is no voice.
[[nodiscard]] const char *voiceOf(QStringView language, QStringView accent);

/// Whether the voice knows the letters of the text. The Japanese one reads each Chinese character as what it
/// is: "Chinese letter"; the Chinese one reads how
/// they are written in Latin letters, in English.
[[nodiscard]] bool canRead(QStringView language, const QString &text);

} // namespace murvo::service
