// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/WatchingTable.h"

#include "Store/Columns.h"
#include "Store/Database.h"
#include "Store/FilmTable.h"

namespace murvo::service {

namespace {

constexpr auto columns = "position_ms, duration_ms, speed_percent, audio_track_id, is_finished, watched_ms";

Watching watchingOfRow(const SQLite::Statement &row) {
    Watching watching;
    watching.positionMs = row.getColumn(0).getInt64();
    watching.durationMs = row.getColumn(1).getInt64();
    watching.speedPercent = row.getColumn(2).getInt();
    if (!row.getColumn(3).isNull())
        watching.audioTrackId = row.getColumn(3).getInt();
    watching.isFinished = row.getColumn(4).getInt() != 0;
    if (!row.getColumn(5).isNull())
        watching.watchedAtMs = row.getColumn(5).getInt64();
    return watching;
}

Watching read(SQLite::Database &connection, qint32 filmId) {
    SQLite::Statement query(connection,
                            std::string("SELECT ") + columns + " FROM watching WHERE film_id = ?");
    query.bind(1, filmId);
    return query.executeStep() ? watchingOfRow(query) : Watching();
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

WatchedPage WatchingTable::list(qint32 offset, qint32 count) {
    return _database.run([offset, count](SQLite::Database &connection) {
        WatchedPage page;
        page.total =
            connection.execAndGet("SELECT count(*) FROM watching WHERE watched_ms IS NOT NULL").getInt();
        SQLite::Statement query(connection,
                                std::string("SELECT ") + columns +
                                    ", films.id, films.name, films.path, "
                                    "(SELECT count(DISTINCT lemma) FROM sightings WHERE film_id = films.id), "
                                    "films.identity "
                                    "FROM watching JOIN films ON films.id = film_id "
                                    "WHERE watched_ms IS NOT NULL "
                                    "ORDER BY watched_ms DESC, films.id DESC LIMIT ? OFFSET ?");
        query.bind(1, count);
        query.bind(2, offset);
        while (query.executeStep())
            page.films.append({query.getColumn(6).getInt(), textOf(query.getColumn(7)),
                               textOf(query.getColumn(8)), watchingOfRow(query), query.getColumn(9).getInt(),
                               sizeOfIdentity(textOf(query.getColumn(10)))});
        return page;
    });
}

void WatchingTable::takeOff(qint32 filmId) {
    _database.transact([filmId](SQLite::Database &connection) {
        for (const char *statement :
             {"UPDATE watching SET position_ms = 0, is_finished = 0, watched_ms = NULL WHERE film_id = ?",
              "DELETE FROM stills WHERE film_id = ?"}) {
            SQLite::Statement change(connection, statement);
            change.bind(1, filmId);
            change.exec();
        }
    });
}

} // namespace murvo::service
