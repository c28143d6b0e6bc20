// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Dictionary/English.h"

#include <functional>
#include <optional>

namespace murvo::service {

/// A phrase that was found around a word of a text.
struct Phrase {
    QString headword; ///< as the dictionary has it: "look forward to"
    int start = 0;    ///< in UTF-16 units of the text, as length; words that stand between are within
    int length = 0;
};

/// The longest phrase of a dictionary that the word belongs to: words that stand together ("gave up" is "give
/// up", "your mind" is "one's mind"), else a verb and its particle with words between ("give it up"). words:
/// of the text, at most some dozens; isKnown: whether the dictionary has that headword.
[[nodiscard]] std::optional<Phrase> longestPhrase(const std::vector<EnglishWord> &words, std::size_t clicked,
                                                  const English &english,
                                                  const std::function<bool(const QString &)> &isKnown);

} // namespace murvo::service
