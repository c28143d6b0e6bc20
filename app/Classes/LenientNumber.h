// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonValue>
#include <QString>

namespace murvo {

/// Readings of numbers out of text that never fail: what is no number reads as 0, what follows one is
/// ignored.

/// Leading integer after blanks, clamped to 32 bits.
[[nodiscard]] qint32 intValue(const QString &text);
/// Leading decimal number after blanks ("1.5x" is 1.5).
[[nodiscard]] float floatValue(const QString &text);
/// True for text that begins with Y, y, T, t or, after a sign and zeros, with a digit that is not 0.
[[nodiscard]] bool boolValue(const QString &text);
/// A number's low 32 bits (fractions cut off) or a text's leading integer; anything else is 0.
[[nodiscard]] qint32 intValue(const QJsonValue &value);
/// Leading decimal number of a text, or nothing when there is none.
[[nodiscard]] bool scanDouble(const QString &text, double &number);

} // namespace murvo
