// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Timing/Timing.h"

namespace murvo::service {

class Database;

/// The table of how subtitles were moved to fit their films. Any thread; borrows the database. Every call may
/// throw SQLite::Exception.
class TimingTable {
  public:
    explicit TimingTable(Database &database)
        : _database(database) {}

    /// As the subtitle's times are, unless it was moved.
    [[nodiscard]] Timing timing(qint32 subtitleId);
    /// The subtitle must exist.
    void setTiming(qint32 subtitleId, const Timing &timing);

  private:
    Database &_database;
};

} // namespace murvo::service
