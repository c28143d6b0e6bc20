// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/SubtitleTable.h"
#include "Subtitles/Cues.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>
#include <type_traits>

namespace SQLite {
class Database;
}

namespace murvo::service {

class Database;

/// A line of a stored subtitle, at the subtitle's own times.
struct StoredLine {
    qint64 id = 0;
    qint32 subtitleId = 0;
    qint64 startMs = 0;
    qint64 endMs = 0;
    QString text; ///< its text lines parted by "\n"
};

struct FoundLine {
    StoredLine line;
    qint32 filmId = 0;
};

/// What to look for in the lines of all films.
struct LineQuery {
    QString phrase;           ///< its letters of any case, with accents or without
    QString language;         ///< of the subtitle, as likelyLanguage() tells it; empty: any
    bool isWholeWord = false; ///< whether the phrase ends with its last word; else that may go on
};

/// How often a dictionary form is in an English subtitle.
struct MetWord {
    QString lemma;
    QString form;      ///< as the line has it
    QStringList forms; ///< all that the subtitle has, in lower case
    qint32 count = 0;
    bool isName = false; ///< of a person, a place; nothing to learn
    qsizetype cue = 0;   ///< which of the cues shows it; write only
    qint64 lineId = 0;   ///< the same when read
};

/// The table of the lines of all stored subtitles, with an index of their words, and of the words met in the
/// English ones. All of it is made from the subtitles' contents. Any thread; borrows the database. Every call
/// may throw SQLite::Exception.
class LineTable {
  public:
    explicit LineTable(Database &database)
        : _database(database) {}

    /// Subtitles (of one film, or of all for 0) whose lines were not made from what is stored of them now,
    /// or not in the way of that number; the oldest first,
    /// so that what was met last has the highest lines.
    [[nodiscard]] QList<qint32> due(int madeBy, qint32 filmId = 0);

    [[nodiscard]] bool isDue(int madeBy, qint32 subtitleId);

    /// Keeps the lines and words of a subtitle, unless it has become another since it was read; at once or
    /// not at all.
    void replace(const Subtitle &subtitle, int madeBy, const QList<Cue> &cues, const QList<MetWord> &words);

    [[nodiscard]] QList<MetWord> words(qint32 subtitleId);
    /// The same without forms and lines.
    [[nodiscard]] QList<MetWord> wordCounts(qint32 subtitleId);

    /// The lines that start in that time of the subtitle, in order.
    [[nodiscard]] QList<StoredLine> between(qint32 subtitleId, qint64 fromMs, qint64 toMs);

    [[nodiscard]] std::optional<StoredLine> line(qint64 lineId);

    /// Up to count lines with that phrase: those below the line of that id (0: all), films met last first,
    /// each in its order.
    [[nodiscard]] QList<FoundLine> search(const LineQuery &sought, qint64 belowId, qint32 count);

    /// Makes the index of the words anew, whatever state it is in. Of another store, too.
    static void remakeIndex(SQLite::Database &connection);

  private:
    /// Does it once more, with the index made anew, when the index turns out to be damaged.
    template<typename Use>
    std::invoke_result_t<Use> mendingIndex(const Use &use);

    [[nodiscard]] QList<FoundLine> find(const LineQuery &sought, qint64 belowId, qint32 count);

    Database &_database;
};

} // namespace murvo::service
