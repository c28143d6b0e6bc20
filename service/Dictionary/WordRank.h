// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <string_view>
#include <vector>

namespace murvo::service {

/// The dictionary forms of English in the order of their use, the commonest first.
///
/// Immutable, any thread; owned by the English that grades words by it. It holds the one text of the list and
/// where its lines begin, and knows nothing of how the list was made.
class WordRank {
  public:
    /// In no list is any word.
    WordRank() = default;
    /// list: one word a line, in lower case. Empty lines are none; of a word that is there twice the first
    /// counts.
    explicit WordRank(QByteArray list);

    /// The list that the program carries.
    [[nodiscard]] static WordRank ofProgram();

    /// The word's place, 1 the commonest; 0 when the list has it not.
    [[nodiscard]] int of(const QString &word) const;
    [[nodiscard]] int size() const { return static_cast<int>(_words.size()); }

  private:
    /// A word and its place in the list.
    struct Word {
        std::uint32_t start = 0; ///< in the text
        std::uint32_t length = 0;
        int rank = 0;
    };

    [[nodiscard]] std::string_view textOf(const Word &word) const {
        return {_text.constData() + word.start, word.length};
    }

    QByteArray _text;
    std::vector<Word> _words; ///< sorted by their bytes
};

} // namespace murvo::service
