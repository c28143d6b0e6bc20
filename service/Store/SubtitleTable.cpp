// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/SubtitleTable.h"

#include "Store/Database.h"

#include <QCryptographicHash>

namespace murvo::service {

namespace {

constexpr auto columns = "id, film_id, file_name, language, forced, hearing_impaired, content_sha256";

QByteArray blobOf(const SQLite::Column &column) {
    return {static_cast<const char *>(column.getBlob()), column.getBytes()};
}

Subtitle subtitleOfRow(SQLite::Statement &row) {
    return {row.getColumn(0).getInt(),
            row.getColumn(1).getInt(),
            QString::fromStdString(row.getColumn(2).getString()),
            QString::fromStdString(row.getColumn(3).getString()),
            row.getColumn(4).getInt() != 0,
            row.getColumn(5).getInt() != 0,
            blobOf(row.getColumn(6))};
}

} // namespace

Subtitle SubtitleTable::findOrAdd(qint32 filmId, const Subtitle &described) {
    // Most lookups tell nothing new, and a write waits for the disk.
    for (const Subtitle &known : ofFilm(filmId)) {
        if (known.fileName == described.fileName && known.language == described.language &&
            known.forced == described.forced && known.hearingImpaired == described.hearingImpaired)
            return known;
    }
    return _database.transact([filmId, &described](SQLite::Database &connection) {
        SQLite::Statement add(
            connection, std::string("INSERT INTO subtitles "
                                    "(film_id, file_name, language, forced, hearing_impaired) "
                                    "VALUES (?, ?, ?, ?, ?) ON CONFLICT (film_id, file_name) DO UPDATE SET "
                                    "language = excluded.language, forced = excluded.forced, "
                                    "hearing_impaired = excluded.hearing_impaired RETURNING ") +
                            columns);
        add.bind(1, filmId);
        add.bind(2, described.fileName.toStdString());
        add.bind(3, described.language.toStdString());
        add.bind(4, described.forced ? 1 : 0);
        add.bind(5, described.hearingImpaired ? 1 : 0);
        add.executeStep();
        Subtitle subtitle = subtitleOfRow(add);
        while (add.executeStep()) {
        }
        return subtitle;
    });
}

std::optional<Subtitle> SubtitleTable::find(qint32 subtitleId) {
    return _database.run([subtitleId](SQLite::Database &connection) -> std::optional<Subtitle> {
        SQLite::Statement query(connection,
                                std::string("SELECT ") + columns + " FROM subtitles WHERE id = ?");
        query.bind(1, subtitleId);
        if (!query.executeStep())
            return std::nullopt;
        return subtitleOfRow(query);
    });
}

QList<Subtitle> SubtitleTable::ofFilm(qint32 filmId) {
    return _database.run([filmId](SQLite::Database &connection) {
        SQLite::Statement query(connection, std::string("SELECT ") + columns +
                                                " FROM subtitles WHERE film_id = ? ORDER BY id");
        query.bind(1, filmId);
        QList<Subtitle> subtitles;
        while (query.executeStep())
            subtitles.append(subtitleOfRow(query));
        return subtitles;
    });
}

bool SubtitleTable::storeContent(qint32 subtitleId, const QByteArray &content) {
    const QByteArray digest = sha256(content);
    return _database.transact([&](SQLite::Database &connection) {
        SQLite::Statement update(connection,
                                 "UPDATE subtitles SET content = ?, content_sha256 = ? WHERE id = ?");
        update.bind(1, content.constData(), static_cast<int>(content.size()));
        update.bind(2, digest.constData(), static_cast<int>(digest.size()));
        update.bind(3, subtitleId);
        return update.exec() == 1;
    });
}

std::optional<QByteArray> SubtitleTable::content(qint32 subtitleId) {
    return _database.run([subtitleId](SQLite::Database &connection) -> std::optional<QByteArray> {
        SQLite::Statement query(connection,
                                "SELECT content FROM subtitles WHERE id = ? AND content_sha256 IS NOT NULL");
        query.bind(1, subtitleId);
        if (!query.executeStep())
            return std::nullopt;
        return blobOf(query.getColumn(0));
    });
}

QByteArray SubtitleTable::sha256(const QByteArray &content) {
    return QCryptographicHash::hash(content, QCryptographicHash::Sha256);
}

} // namespace murvo::service
