// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/WatchingTable.h"

#include "Store/Database.h"

namespace murvo::service {

namespace {

Watching read(SQLite::Database &connection, qint32 filmId) {
    SQLite::Statement query(connection, "SELECT position_ms, duration_ms, speed_percent, audio_track_id, "
                                        "is_finished, watched_ms FROM watching WHERE film_id = ?");
    query.bind(1, filmId);
    Watching watching;
    if (!query.executeStep())
        return watching;
    watching.positionMs = query.getColumn(0).getInt64();
    watching.durationMs = query.getColumn(1).getInt64();
    watching.speedPercent = query.getColumn(2).getInt();
    if (!query.getColumn(3).isNull())
        watching.audioTrackId = query.getColumn(3).getInt();
    watching.isFinished = query.getColumn(4).getInt() != 0;
    if (!query.getColumn(5).isNull())
        watching.watchedAtMs = query.getColumn(5).getInt64();
    return watching;
}

void write(SQLite::Database &connection, qint32 filmId, const Watching &watching) {
    SQLite::Statement update(connection,
                             "INSERT OR REPLACE INTO watching (film_id, position_ms, duration_ms, "
                             "speed_percent, audio_track_id, is_finished, watched_ms) "
                             "VALUES (?, ?, ?, ?, ?, ?, ?)");
    update.bind(1, filmId);
    update.bind(2, static_cast<int64_t>(watching.positionMs));
    update.bind(3, static_cast<int64_t>(watching.durationMs));
    update.bind(4, watching.speedPercent);
    if (watching.audioTrackId)
        update.bind(5, *watching.audioTrackId);
    update.bind(6, watching.isFinished ? 1 : 0);
    if (watching.watchedAtMs)
        update.bind(7, static_cast<int64_t>(*watching.watchedAtMs));
    update.exec();
}

} // namespace

Watching WatchingTable::of(qint32 filmId) {
    return _database.run([filmId](SQLite::Database &connection) { return read(connection, filmId); });
}

Watching WatchingTable::update(qint32 filmId, const std::function<void(Watching &)> &change) {
    return _database.transact([filmId, &change](SQLite::Database &connection) {
        Watching watching = read(connection, filmId);
        change(watching);
        write(connection, filmId, watching);
        return watching;
    });
}

} // namespace murvo::service
