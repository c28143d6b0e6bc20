// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <optional>

namespace murvo::service {

class Database;

/// One of the two lines over the picture.
enum class Line {
    Learned, ///< the language that is learned (English)
    Native   ///< the learner's own language
};

/// Which subtitle the learner wants as a line: its id, or 0 for none. Nothing: the best is found.
using LineChoice = std::optional<qint32>;

/// The table of what the learner has chosen to see over a film. Any thread; borrows the database. Every call
/// may throw SQLite::Exception.
class ChoiceTable {
  public:
    explicit ChoiceTable(Database &database)
        : _database(database) {}

    [[nodiscard]] LineChoice choice(qint32 filmId, Line line);
    /// The subtitle must exist.
    void choose(qint32 filmId, Line line, LineChoice choice);

  private:
    Database &_database;
};

} // namespace murvo::service
