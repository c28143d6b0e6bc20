// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

#include <optional>

namespace murvo::service {

class Database;

/// The picture of a film where the learner stopped.
struct Still {
    qint64 positionMs = 0; ///< for which it was taken
    QByteArray jpeg;
};

/// The table of these pictures. Any thread; borrows the database. Every call may throw SQLite::Exception.
class StillTable {
  public:
    explicit StillTable(Database &database)
        : _database(database) {}

    [[nodiscard]] std::optional<Still> of(qint32 filmId);

    /// Passed over for a film that is not among the watched any more.
    void keep(qint32 filmId, const Still &still);

  private:
    Database &_database;
};

} // namespace murvo::service
