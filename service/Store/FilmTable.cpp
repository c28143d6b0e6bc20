// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/FilmTable.h"

#include "Store/Columns.h"
#include "Store/Database.h"

namespace murvo::service {

namespace {

constexpr QLatin1String hashPrefix("hash:");
constexpr auto columns = "id, name, path, identity, inside_read";

Film filmOfRow(SQLite::Statement &row) {
    const QString identity = textOf(row.getColumn(3));
    return {row.getColumn(0).getInt(),       textOf(row.getColumn(1)), textOf(row.getColumn(2)),
            identity.startsWith(hashPrefix), textOf(row.getColumn(4)), sizeOfIdentity(identity)};
}

} // namespace

QString FilmKey::identity() const {
    if (hashed())
        return hashPrefix + QStringLiteral("%1:%2").arg(movieHash, 0, 16).arg(sizeBytes);
    return path.isEmpty() ? QStringLiteral("name:") + name : QStringLiteral("path:") + path;
}

qint64 sizeOfIdentity(const QString &identity) {
    return identity.startsWith(hashPrefix) ? identity.section(u':', 2).toLongLong() : 0;
}

Film FilmTable::findOrAdd(const FilmKey &key) {
    // Most lookups tell nothing new, and a write waits for the disk.
    const auto known = findByIdentity(key.identity());
    if (known && (key.name.isEmpty() || key.name == known->name) &&
        (key.path.isEmpty() || key.path == known->path))
        return *known;
    return _database.transact([&key](SQLite::Database &connection) {
        // A lookup without a path or a name keeps what an earlier one told.
        SQLite::Statement add(connection,
                              std::string("INSERT INTO films (identity, name, path) VALUES (?, ?, ?) "
                                          "ON CONFLICT (identity) DO UPDATE SET "
                                          "name = CASE WHEN excluded.name = '' THEN name "
                                          "ELSE excluded.name END, "
                                          "path = CASE WHEN excluded.path = '' THEN path "
                                          "ELSE excluded.path END RETURNING ") +
                                  columns);
        add.bind(1, key.identity().toStdString());
        add.bind(2, key.name.toStdString());
        add.bind(3, key.path.toStdString());
        add.executeStep();
        Film film = filmOfRow(add);
        while (add.executeStep()) {
        }
        return film;
    });
}

std::optional<Film> FilmTable::find(qint32 filmId) {
    return _database.run([filmId](SQLite::Database &connection) -> std::optional<Film> {
        SQLite::Statement query(connection, std::string("SELECT ") + columns + " FROM films WHERE id = ?");
        query.bind(1, filmId);
        if (!query.executeStep())
            return std::nullopt;
        return filmOfRow(query);
    });
}

void FilmTable::setInsideRead(qint32 filmId, const QString &file) {
    _database.transact([filmId, &file](SQLite::Database &connection) {
        SQLite::Statement update(connection, "UPDATE films SET inside_read = ? WHERE id = ?");
        update.bind(1, file.toStdString());
        update.bind(2, filmId);
        update.exec();
    });
}

std::optional<Film> FilmTable::findByIdentity(const QString &identity) {
    return _database.run([&identity](SQLite::Database &connection) -> std::optional<Film> {
        SQLite::Statement query(connection,
                                std::string("SELECT ") + columns + " FROM films WHERE identity = ?");
        query.bind(1, identity.toStdString());
        if (!query.executeStep())
            return std::nullopt;
        return filmOfRow(query);
    });
}

} // namespace murvo::service
