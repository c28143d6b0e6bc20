// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <atomic>
#include <optional>

namespace murvo::service {

/// How fast a text is spoken.
enum class Pace {
    Normal,
    Slow ///< about twice as long, with a gap after each word, so that each is heard for itself
};

/// The speech synthesizer, the only code that includes its header.
///
/// The library has one state for the whole process: it is made ready at the first use and stays so until the
/// process ends, and the calls below take turns. Any thread may call, each call blocks for the length of the
/// work (some 25 ms for the first word, then below 1 ms a word).
namespace Espeak {

/// The text as a WAV file (16 bit, one channel); nothing when the library or the voice is not there, or it
/// was given up.
[[nodiscard]] std::optional<QByteArray> sound(const QString &text, const char *voice, Pace pace,
                                              const std::atomic<bool> &isGivenUp);

/// The text in the letters of the International Phonetic Alphabet, a blank between sentences. In English the
/// stress marks stand before their syllables, in other languages right before the vowels.
[[nodiscard]] std::optional<QString> pronunciation(const QString &text, const char *voice);

} // namespace Espeak

} // namespace murvo::service
