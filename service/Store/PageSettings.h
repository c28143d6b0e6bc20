// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>

namespace murvo::service {

class Database;

/// What the pages keep of the learner, in the table of settings: the service does not look into it. Any
/// thread; borrows the database. Every call may throw SQLite::Exception.
class PageSettings {
  public:
    /// Of all together, as compact JSON.
    static constexpr qsizetype mostBytes = 64 * 1024;

    explicit PageSettings(Database &database)
        : _database(database) {}

    [[nodiscard]] QJsonObject all();

    /// Puts each value in the place of the one of that name; null removes it. False, and nothing is changed,
    /// when all together would become too much.
    [[nodiscard]] bool change(const QJsonObject &values);

  private:
    Database &_database;
};

} // namespace murvo::service
