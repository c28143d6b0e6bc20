// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

#include <atomic>
#include <mutex>

namespace murvo::service {

struct Film;
class StillTable;
class WatchingTable;

/// The pictures of the shelf: of each film the one where the learner stopped.
///
/// They are made when they are asked for, one at a time, and kept. Any thread; borrows the tables. The flag
/// ends what is being made. May throw SQLite::Exception.
class FilmStills {
  public:
    FilmStills(WatchingTable &watching, StillTable &stills, const std::atomic<bool> &isEnding)
        : _watching(watching)
        , _stills(stills)
        , _isEnding(isEnding) {}

    /// A JPEG; an earlier one where no new one can be made. Empty when there is none at all.
    [[nodiscard]] QByteArray still(const Film &film);

  private:
    WatchingTable &_watching;
    StillTable &_stills;
    const std::atomic<bool> &_isEnding;
    std::mutex _making;
};

} // namespace murvo::service
