// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Dictionary/Entry.h"

#include <QByteArray>
#include <QHash>
#include <QString>

#include <vector>

namespace murvo::service {

/// What the words mean that hold sentences together, and the sounds of talk, in plain English: WordNet has
/// nouns, verbs, adjectives and adverbs only, and takes "he" for helium.
///
/// Immutable, any thread; owned by the WordLookup.
class FunctionWords {
  public:
    /// list: "WORD | PART OF SPEECH | MEANING | EXAMPLE", one a line; lines that begin with # and those
    /// without these four are passed over.
    explicit FunctionWords(const QByteArray &list);

    /// Those that the program carries.
    [[nodiscard]] static FunctionWords ofProgram();

    /// None when it has not the word, which is given in lower case.
    [[nodiscard]] std::vector<EnglishSense> senses(const QString &word) const { return _senses.value(word); }

  private:
    QHash<QString, std::vector<EnglishSense>> _senses;
};

} // namespace murvo::service
