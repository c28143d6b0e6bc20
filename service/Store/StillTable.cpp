// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/StillTable.h"

#include "Store/Columns.h"
#include "Store/Database.h"

namespace murvo::service {

std::optional<Still> StillTable::of(qint32 filmId) {
    return _database.run([filmId](SQLite::Database &connection) -> std::optional<Still> {
        SQLite::Statement query(connection, "SELECT position_ms, jpeg FROM stills WHERE film_id = ?");
        query.bind(1, filmId);
        if (!query.executeStep())
            return std::nullopt;
        return Still{query.getColumn(0).getInt64(), blobOf(query.getColumn(1))};
    });
}

void StillTable::keep(qint32 filmId, const Still &still) {
    _database.transact([&](SQLite::Database &connection) {
        SQLite::Statement update(connection, "INSERT OR REPLACE INTO stills (film_id, position_ms, jpeg) "
                                             "SELECT film_id, ?2, ?3 FROM watching "
                                             "WHERE film_id = ?1 AND watched_ms IS NOT NULL");
        update.bind(1, filmId);
        update.bind(2, static_cast<int64_t>(still.positionMs));
        update.bind(3, still.jpeg.constData(), static_cast<int>(still.jpeg.size()));
        update.exec();
    });
}

} // namespace murvo::service
