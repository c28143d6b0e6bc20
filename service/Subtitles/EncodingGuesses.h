// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QByteArrayList>

namespace murvo::service {

/// found, and then the encodings in which bytes could be read as well, those first whose text looks most
/// like a language; at most eight together. A pure function, any thread.
[[nodiscard]] QByteArrayList rankedEncodings(const QByteArray &bytes, const QByteArray &found);

/// guess, or the encoding that differs from it in a few letters only, whichever makes more of a language of
/// bytes: a detector that counts letters does not tell them apart in a short file.
[[nodiscard]] QByteArray likelierTwin(const QByteArray &bytes, const QByteArray &guess);

} // namespace murvo::service
