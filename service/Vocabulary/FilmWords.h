// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Vocabulary/Level.h"
#include "Vocabulary/LineReader.h"

#include <QList>

#include <optional>

namespace murvo::service {

class Lexicon;
class LineIndex;
class WordTable;

/// A dictionary form in a film.
struct FilmWord {
    QString lemma;
    QString form;      ///< as the line has it that shows the word
    QStringList forms; ///< all that the film has, in lower case
    qint32 count = 0;
    qint32 rank = 0; ///< 1 the commonest word of English; 0: not known
    bool isName = false;
    bool isKnown = false; ///< as Knowledge tells
    std::optional<WordStatus> status;
    qint64 lineId = 0;
};

struct WordToLearn {
    FilmWord word;
    ShownLine line;
};

/// How much of a film the learner knows.
struct WordShare {
    qint32 running = 0; ///< words of all lines
    qint32 known = 0;   ///< of them

    /// Cut off; none without words.
    [[nodiscard]] std::optional<qint32> percent() const {
        return running > 0 ? std::optional(100 * known / running) : std::nullopt;
    }
};

/// What a learner meets in a film.
struct FilmWordsAnswer {
    qint32 subtitleId = 0; ///< in which the words were counted; 0: the film has no English one yet
    WordShare share;
    QList<FilmWord> words; ///< the most frequent first
    QList<WordToLearn> first;
};

/// The words of a film, and which of them to learn first. Any thread; borrows everything. May throw
/// SQLite::Exception.
class FilmWords {
  public:
    FilmWords(const LineParts &parts, LineIndex &index, WordTable &words, const Lexicon &lexicon)
        : _parts(parts)
        , _index(index)
        , _words(words)
        , _lexicon(lexicon) {}

    [[nodiscard]] FilmWordsAnswer read(qint32 filmId);

    /// Of each of these films, by what has been counted so far.
    [[nodiscard]] QList<WordShare> shares(const QList<qint32> &filmIds);

    [[nodiscard]] Knowledge knowledge();

  private:
    LineParts _parts;
    LineIndex &_index;
    WordTable &_words;
    const Lexicon &_lexicon;
};

} // namespace murvo::service
