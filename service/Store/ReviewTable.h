// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Vocabulary/ReviewPlan.h"

#include <QString>

#include <optional>
#include <string>

namespace murvo::service {

class Database;

/// Where a word stands in its reviews.
struct ReviewPlace {
    WordStatus status = WordStatus::New;
    qint64 changedAtMs = 0; ///< of the status; since 1970, UTC
    std::optional<qint64> dueAtMs;

    bool operator==(const ReviewPlace &) const = default;
};

/// What a grade has done to a word.
struct GradeStep {
    QString lemma;
    ReviewPlace before;
    ReviewPlace after;
};

/// What of the table of words is due at that time (ms since 1970), for a query. A time that lies further off
/// than any interval was written under a wrong clock, and would hide the word for good: such a word is due.
[[nodiscard]] std::string conditionOfDue(qint64 nowMs);

/// The marked words by the times at which they come up for review. Any thread; borrows the database. Every
/// call may throw SQLite::Exception.
class ReviewTable {
  public:
    explicit ReviewTable(Database &database)
        : _database(database) {}

    /// How many are due at that time.
    [[nodiscard]] qint32 dueCount(qint64 nowMs);

    /// When the next word comes up after that time.
    [[nodiscard]] std::optional<qint64> nextDue(qint64 nowMs);

    /// None when the word is not marked.
    [[nodiscard]] std::optional<GradeStep> grade(const QString &lemma, ReviewGrade grade, qint64 nowMs);

    /// False, and nothing is changed, when something else has become of the word since.
    [[nodiscard]] bool takeBack(const GradeStep &step);

  private:
    Database &_database;
};

} // namespace murvo::service
