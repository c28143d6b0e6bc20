// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Dictionary/WordRank.h"

#include <QString>
#include <QStringList>
#include <QStringView>

#include <utility>
#include <vector>

namespace murvo::service {

class WordNet;

/// One word of a line, as it stands there.
struct EnglishWord {
    int start = 0; ///< in UTF-16 units of the line, as length
    int length = 0;
    QString form; ///< as written, with plain apostrophes
};

/// The words of a line in order. "don't", "mother-in-law" and "'em" are one each; numbers are no words.
[[nodiscard]] std::vector<EnglishWord> englishWords(QStringView line);

/// What a contraction stands for ("gonna": "going to"), in lower case; empty for what is none.
[[nodiscard]] QString uncontracted(QStringView form);

/// From any form of an English word to the words of the dictionary: WordNet's rules for endings, its
/// irregular forms, and what it lacks: contractions, possessives, dropped letters. And from a word to how
/// common it is.
///
/// Immutable, any thread; owned by the EmbeddedService with the WordNet that it asks.
class English {
  public:
    explicit English(const WordNet &wordNet, WordRank rank = {})
        : _wordNet(wordNet)
        , _rank(std::move(rank)) {}

    /// The dictionary words that a form can be, likeliest first; the form itself, in lower case, when it is
    /// not known. Never empty for a word, empty for no text.
    [[nodiscard]] QStringList lemmas(QStringView form) const;

    /// The place of a dictionary form by use, 1 the commonest; 0 when it is in no list.
    [[nodiscard]] int rank(const QString &lemma) const { return _rank.of(lemma); }

  private:
    [[nodiscard]] QStringList knownWords(const QByteArray &form) const;

    const WordNet &_wordNet;
    WordRank _rank;
};

} // namespace murvo::service
