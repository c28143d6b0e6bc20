// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/ChoiceTable.h"

#include "Store/Database.h"

namespace murvo::service {

namespace {

const char *nameOf(Line line) {
    return line == Line::Learned ? "learned" : "native";
}

} // namespace

LineChoice ChoiceTable::choice(qint32 filmId, Line line) {
    return _database.run([filmId, line](SQLite::Database &connection) -> LineChoice {
        SQLite::Statement query(connection, "SELECT subtitle_id FROM choices WHERE film_id = ? AND line = ?");
        query.bind(1, filmId);
        query.bind(2, nameOf(line));
        if (!query.executeStep())
            return std::nullopt;
        return query.getColumn(0).isNull() ? 0 : query.getColumn(0).getInt();
    });
}

void ChoiceTable::choose(qint32 filmId, Line line, LineChoice choice) {
    _database.transact([&](SQLite::Database &connection) {
        SQLite::Statement update(connection,
                                 choice ? "INSERT OR REPLACE INTO choices (film_id, line, subtitle_id) "
                                          "VALUES (?, ?, NULLIF(?, 0))"
                                        : "DELETE FROM choices WHERE film_id = ? AND line = ?");
        update.bind(1, filmId);
        update.bind(2, nameOf(line));
        if (choice)
            update.bind(3, *choice);
        update.exec();
    });
}

} // namespace murvo::service
