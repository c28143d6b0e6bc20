// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Vocabulary/SavedWord.h"

#include <QHash>
#include <QList>
#include <QString>

#include <optional>

namespace murvo::service {

class Database;

/// Where the learner has saved a word: texts and times of the film as they were then.
struct Sighting {
    QString form;
    QString line;
    QString translation; ///< empty when there was none
    qint32 filmId = 0;
    QString filmName; ///< read only
    qint32 subtitleId = 0;
    qint64 startMs = 0; ///< of the film
    qint64 endMs = 0;
    qint64 savedAtMs = 0; ///< read only; since 1970, UTC
};

/// What to keep of a word in one go. What is not given stays as it is.
struct WordChange {
    QString lemma; ///< in the form of wordKey()
    std::optional<WordStatus> status;
    std::optional<QString> gloss; ///< empty: none any more
    QString glossLanguage;
    std::optional<Sighting> sighting; ///< the film and the subtitle exist, or are 0
};

struct WordGrade {
    QString lemma;
    WordStatus status = WordStatus::New;
};

/// The newest first, but for the alphabet; by the time of review the longest due first, those that never are
/// last.
enum class WordOrder { Added, Changed, Saved, Alphabet, Due };

/// Which of the marked words to list.
struct WordQuery {
    QList<WordStatus> statuses;       ///< empty: of any
    qint32 filmId = 0;                ///< saved in that film; 0: in any or none
    QString text;                     ///< in lemma or gloss, whatever the case and the accents; empty: any
    std::optional<qint64> dueUntilMs; ///< due by then; none: or not
    WordOrder order = WordOrder::Added;
    qint32 offset = 0;
    qint32 count = 0;
};

struct WordPage {
    qint32 total = 0; ///< of all pages
    QList<SavedWord> words;
};

/// The table of the words that the learner has marked, with where they were saved. Any thread; borrows the
/// database. Every call may throw SQLite::Exception. What it says was kept is on the disk.
class WordTable {
  public:
    explicit WordTable(Database &database);

    [[nodiscard]] std::optional<SavedWord> find(const QString &lemma, const QString &glossLanguage);

    /// Where a word was saved, the newest first.
    [[nodiscard]] QList<Sighting> sightings(const QString &lemma);

    /// A status or a sighting marks the word if it is not yet: as new where no status is given. The same line
    /// of the same film is kept once.
    void keep(const WordChange &change);

    /// All or none; returns how many have changed.
    qint32 grade(const QList<WordGrade> &grades);

    /// False when the word was not marked.
    bool forget(const QString &lemma);

    /// None when it is not marked.
    [[nodiscard]] std::optional<WordStatus> status(const QString &lemma);

    /// The status of every marked word, by its lemma.
    [[nodiscard]] QHash<QString, WordStatus> statuses();

    [[nodiscard]] WordPage list(const WordQuery &query, const QString &glossLanguage);

    /// Every marked word, or every one that is being learned, the oldest first.
    [[nodiscard]] QList<SavedWord> all(const QString &glossLanguage);
    [[nodiscard]] QList<SavedWord> learned(const QString &glossLanguage);

  private:
    [[nodiscard]] QList<SavedWord> ofStatuses(const QList<WordStatus> &statuses,
                                              const QString &glossLanguage);

    Database &_database;
};

} // namespace murvo::service
