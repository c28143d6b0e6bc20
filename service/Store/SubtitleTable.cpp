// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/SubtitleTable.h"

#include "ChangeCounts.h"
#include "Store/Columns.h"
#include "Store/Database.h"

#include <QCryptographicHash>

#include <algorithm>
#include <array>

namespace murvo::service {

namespace {

constexpr std::array sourceNames{"beside", "inside", "added"};

constexpr auto columns = "id, film_id, source, place, file_name, title, language, hinted_language, forced, "
                         "hearing_impaired, is_there, text_language, encoding, cue_count, problem, "
                         "content_sha256, chosen_language";

const char *nameOf(SubtitleSource source) {
    return sourceNames[static_cast<size_t>(source)];
}

SubtitleSource sourceNamed(const std::string &name) {
    const auto found = std::find(sourceNames.begin(), sourceNames.end(), name);
    return found == sourceNames.end() ? SubtitleSource::Beside
                                      : static_cast<SubtitleSource>(found - sourceNames.begin());
}

Subtitle subtitleOfRow(SQLite::Statement &row) {
    Subtitle subtitle;
    subtitle.id = row.getColumn(0).getInt();
    subtitle.filmId = row.getColumn(1).getInt();
    subtitle.source = sourceNamed(row.getColumn(2).getString());
    subtitle.place = textOf(row.getColumn(3));
    subtitle.fileName = textOf(row.getColumn(4));
    subtitle.title = textOf(row.getColumn(5));
    subtitle.language = textOf(row.getColumn(6));
    subtitle.hintedLanguage = textOf(row.getColumn(7));
    subtitle.forced = row.getColumn(8).getInt() != 0;
    subtitle.hearingImpaired = row.getColumn(9).getInt() != 0;
    subtitle.isThere = row.getColumn(10).getInt() != 0;
    subtitle.textLanguage = textOf(row.getColumn(11));
    subtitle.encoding = textOf(row.getColumn(12));
    subtitle.cueCount = row.getColumn(13).getInt();
    subtitle.problem = textOf(row.getColumn(14));
    subtitle.contentSha256 = blobOf(row.getColumn(15));
    subtitle.chosenLanguage = textOf(row.getColumn(16));
    return subtitle;
}

bool tellsTheSame(const Subtitle &known, const Subtitle &described) {
    return known.source == described.source && known.place == described.place &&
           known.fileName == described.fileName && known.title == described.title &&
           known.language == described.language && known.hintedLanguage == described.hintedLanguage &&
           known.forced == described.forced && known.hearingImpaired == described.hearingImpaired &&
           known.isThere;
}

QList<Subtitle> rowsOfFilm(SQLite::Database &connection, qint32 filmId) {
    SQLite::Statement query(connection, std::string("SELECT ") + columns +
                                            " FROM subtitles WHERE film_id = ? AND is_removed = 0 "
                                            "ORDER BY id");
    query.bind(1, filmId);
    QList<Subtitle> subtitles;
    while (query.executeStep())
        subtitles.append(subtitleOfRow(query));
    return subtitles;
}

Subtitle addOrUpdate(SQLite::Database &connection, qint32 filmId, const Subtitle &described) {
    SQLite::Statement add(
        connection,
        std::string("INSERT INTO subtitles (film_id, source, place, file_name, title, language, "
                    "hinted_language, forced, hearing_impaired) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?) "
                    "ON CONFLICT (film_id, source, place) DO UPDATE SET file_name = excluded.file_name, "
                    "title = excluded.title, language = excluded.language, "
                    "hinted_language = excluded.hinted_language, forced = excluded.forced, "
                    "hearing_impaired = excluded.hearing_impaired, is_there = 1, is_removed = 0 "
                    "RETURNING ") +
            columns);
    add.bind(1, filmId);
    add.bind(2, nameOf(described.source));
    add.bind(3, described.place.toStdString());
    add.bind(4, described.fileName.toStdString());
    add.bind(5, described.title.toStdString());
    add.bind(6, described.language.toStdString());
    add.bind(7, described.hintedLanguage.toStdString());
    add.bind(8, described.forced ? 1 : 0);
    add.bind(9, described.hearingImpaired ? 1 : 0);
    add.executeStep();
    Subtitle subtitle = subtitleOfRow(add);
    while (add.executeStep()) {
    }
    return subtitle;
}

// The columns of the findings, and from which place on their values are bound.
constexpr auto setFindingsColumns = "cue_count = ?, text_language = ?, problem = ?";

void bindFindings(SQLite::Statement &update, int firstPlace, const SubtitleFindings &findings) {
    update.bind(firstPlace, findings.cueCount);
    update.bind(firstPlace + 1, findings.textLanguage.toStdString());
    update.bind(firstPlace + 2, findings.problem.toStdString());
}

// How a content was moved, and which letters and language were chosen for it, says nothing of another one.
void forgetWhatWasOfAnother(SQLite::Database &connection, qint32 subtitleId, const QByteArray &digest) {
    const char *isAnother = " AND content_sha256 IS NOT NULL AND content_sha256 <> ?)";
    for (const char *forget :
         {"DELETE FROM timings WHERE subtitle_id IN (SELECT id FROM subtitles WHERE id = ?",
          "UPDATE subtitles SET encoding = '', chosen_language = '' WHERE id IN (SELECT id FROM subtitles "
          "WHERE id = ?"}) {
        SQLite::Statement statement(connection, std::string(forget) + isAnother);
        statement.bind(1, subtitleId);
        statement.bind(2, digest.constData(), static_cast<int>(digest.size()));
        statement.exec();
    }
}

template<typename Value>
void set(Database &database, qint32 subtitleId, const char *column, const Value &value) {
    database.transact([&](SQLite::Database &connection) {
        SQLite::Statement update(connection,
                                 std::string("UPDATE subtitles SET ") + column + " = ? WHERE id = ?");
        update.bind(1, value);
        update.bind(2, subtitleId);
        update.exec();
    });
}

} // namespace

QList<Subtitle> SubtitleTable::findOrAdd(qint32 filmId, const QList<Subtitle> &described) {
    // Most lookups tell nothing new, and a write waits for the disk.
    const QList<Subtitle> known = ofFilm(filmId);
    QList<Subtitle> found;
    for (const Subtitle &each : described) {
        const auto same = std::find_if(known.begin(), known.end(),
                                       [&each](const Subtitle &row) { return tellsTheSame(row, each); });
        if (same != known.end())
            found.append(*same);
    }
    if (found.size() == described.size())
        return found;
    return _database.transact([filmId, &described](SQLite::Database &connection) {
        QList<Subtitle> rows;
        for (const Subtitle &each : described)
            rows.append(addOrUpdate(connection, filmId, each));
        return rows;
    });
}

void SubtitleTable::onlyTheseAreThere(qint32 filmId, SubtitleSource source,
                                      const QList<qint32> &subtitleIds) {
    for (const Subtitle &known : ofFilm(filmId)) {
        if (known.source != source || !known.isThere || subtitleIds.contains(known.id))
            continue;
        _database.transact([&known](SQLite::Database &connection) {
            SQLite::Statement update(connection, "UPDATE subtitles SET is_there = 0 WHERE id = ?");
            update.bind(1, known.id);
            update.exec();
        });
    }
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
    return _database.run([filmId](SQLite::Database &connection) { return rowsOfFilm(connection, filmId); });
}

bool SubtitleTable::storeContent(qint32 subtitleId, const QByteArray &content,
                                 const SubtitleFindings &findings) {
    const QByteArray digest = sha256(content);
    const bool isStored = _database.transact([&](SQLite::Database &connection) {
        forgetWhatWasOfAnother(connection, subtitleId, digest);
        SQLite::Statement update(connection, std::string("UPDATE subtitles SET content = ?, "
                                                         "content_sha256 = ?, ") +
                                                 setFindingsColumns + " WHERE id = ?");
        update.bind(1, content.constData(), static_cast<int>(content.size()));
        update.bind(2, digest.constData(), static_cast<int>(digest.size()));
        bindFindings(update, 3, findings);
        update.bind(6, subtitleId);
        return update.exec() == 1;
    });
    announce();
    return isStored;
}

void SubtitleTable::setEncoding(qint32 subtitleId, const QString &encoding,
                                const SubtitleFindings &findings) {
    _database.transact([&](SQLite::Database &connection) {
        SQLite::Statement update(connection, std::string("UPDATE subtitles SET encoding = ?, ") +
                                                 setFindingsColumns + " WHERE id = ?");
        update.bind(1, encoding.toStdString());
        bindFindings(update, 2, findings);
        update.bind(5, subtitleId);
        update.exec();
    });
    announce();
}

void SubtitleTable::setLanguage(qint32 subtitleId, const QString &language) {
    set(_database, subtitleId, "chosen_language", language.toStdString());
    announce();
}

void SubtitleTable::setRemoved(qint32 subtitleId, bool isRemoved) {
    set(_database, subtitleId, "is_removed", isRemoved ? 1 : 0);
    announce();
}

void SubtitleTable::setFindings(qint32 subtitleId, const SubtitleFindings &findings) {
    _database.transact([&](SQLite::Database &connection) {
        SQLite::Statement update(connection,
                                 std::string("UPDATE subtitles SET ") + setFindingsColumns + " WHERE id = ?");
        bindFindings(update, 1, findings);
        update.bind(4, subtitleId);
        update.exec();
    });
    announce();
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

void SubtitleTable::announce() const {
    if (_changes != nullptr)
        _changes->announce();
}

QByteArray SubtitleTable::sha256(const QByteArray &content) {
    return QCryptographicHash::hash(content, QCryptographicHash::Sha256);
}

} // namespace murvo::service
