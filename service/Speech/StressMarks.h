// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace murvo::service {

/// English words in the letters of the International Phonetic Alphabet, a blank between them, with their
/// stress marks where dictionaries have them: "ɛkˈspleɪn" for "ɛksplˈeɪn".
///
/// The synthesizer puts each mark right before the vowel. It goes back over what the syllable begins with: at
/// the beginning of a word all there is, within one the longest that English words begin with. A mark that
/// stands before a consonant already stays there. Nothing but the marks moves.
[[nodiscard]] QString stressBeforeSyllables(const QString &sounds);

} // namespace murvo::service
