// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>

#include <functional>
#include <optional>

namespace murvo::service {

class Database;

/// How the learner has watched a film.
struct Watching {
    static constexpr qint64 longestMs = 86'400'000;
    static constexpr int slowestPercent = 25;
    static constexpr int fastestPercent = 400;

    qint64 positionMs = 0; ///< where to go on
    qint64 durationMs = 0; ///< 0: not known
    int speedPercent = 100;
    std::optional<qint32> audioTrackId; ///< none: the film's own choice
    bool isFinished = false;
    std::optional<qint64> watchedAtMs; ///< since 1970, UTC; none: not among the watched films
};

struct WatchedFilm {
    qint32 filmId = 0;
    QString name;
    QString path; ///< where it lay last; empty when never told
    Watching watching;
    qint32 savedWords = 0;    ///< in it
    qint64 fileSizeBytes = 0; ///< 0: not known
};

struct WatchedPage {
    qint32 total = 0; ///< of all pages
    QList<WatchedFilm> films;
};

/// The table of how films were watched. Any thread; borrows the database. Every call may throw
/// SQLite::Exception.
class WatchingTable {
  public:
    explicit WatchingTable(Database &database)
        : _database(database) {}

    /// Of a film that was not watched, as at first.
    [[nodiscard]] Watching of(qint32 filmId);

    /// Keeps what change() makes of it, and returns that; when it throws, nothing. The film must exist.
    Watching update(qint32 filmId, const std::function<void(Watching &)> &change);

    /// The watched films, the newest first.
    [[nodiscard]] WatchedPage list(qint32 offset, qint32 count);

    /// Has the film no longer among the watched, with its position. Its speed and sound stay.
    void takeOff(qint32 filmId);

  private:
    Database &_database;
};

} // namespace murvo::service
