// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QHash>
#include <QString>

#include <atomic>
#include <chrono>
#include <mutex>
#include <optional>

namespace murvo::service {

struct Film;
class StillTable;
class WatchingTable;

/// The pictures of the shelf: of each film the one where the learner stopped.
///
/// They are made when they are asked for, one at a time, and kept; a film that gives none is left alone for a
/// while. Any thread; borrows the tables. The flag ends what is being made. May throw SQLite::Exception.
class FilmStills {
  public:
    FilmStills(WatchingTable &watching, StillTable &stills, const std::atomic<bool> &isEnding)
        : _watching(watching)
        , _stills(stills)
        , _isEnding(isEnding) {}

    /// A JPEG; an earlier one where no new one can be made. Empty when there is none at all, and for a film
    /// that is not among the watched.
    [[nodiscard]] QByteArray still(const Film &film);

  private:
    /// A try that has given nothing.
    struct Miss {
        qint64 positionMs = 0;
        QString path;
        QDateTime fileChanged;
        std::chrono::steady_clock::time_point at;
    };

    /// What can be told without opening the film; none where that is to be tried.
    [[nodiscard]] std::optional<QByteArray> known(const Film &film, qint64 positionMs);
    [[nodiscard]] bool hasMissed(const Film &film, qint64 positionMs);
    void remember(const Film &film, qint64 positionMs);

    WatchingTable &_watching;
    StillTable &_stills;
    const std::atomic<bool> &_isEnding;
    std::mutex _making;
    std::mutex _mutex; // of the misses, for which nobody waits long
    QHash<qint32, Miss> _misses;
};

} // namespace murvo::service
