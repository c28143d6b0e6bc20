// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ReviewTable.h"

#include <QList>

#include <mutex>

namespace murvo::service {

/// The learner's reviews: grades words, and remembers what it did since the program began, for a grade to be
/// taken back. Any thread; borrows the table. May throw SQLite::Exception.
class Review {
  public:
    explicit Review(ReviewTable &table)
        : _table(table) {}

    [[nodiscard]] qint32 dueCount() const;
    /// When the next word comes up after those that are due.
    [[nodiscard]] std::optional<qint64> nextDue() const;

    /// False when the word is not marked.
    [[nodiscard]] bool grade(const QString &lemma, ReviewGrade grade);

    /// Takes back the last grade that was not taken back yet; returns its word. None when there is none, or
    /// something else has become of the word since.
    [[nodiscard]] std::optional<QString> undo();

  private:
    ReviewTable &_table;
    std::mutex _mutex; // the steps are in the order in which the store took them
    QList<GradeStep> _steps;
};

} // namespace murvo::service
