// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/LineTable.h"

#include "Store/Columns.h"
#include "Store/Database.h"

#include <sqlite3.h>

namespace murvo::service {

namespace {

// As Subtitle::likelyLanguage().
constexpr auto likelyLanguage = "CASE WHEN chosen_language <> '' THEN chosen_language "
                                "WHEN subtitles.language <> '' THEN subtitles.language "
                                "WHEN text_language <> '' THEN text_language ELSE hinted_language END";

const std::string selectDue =
    std::string(
        "SELECT id FROM subtitles LEFT JOIN line_sources AS source ON source.subtitle_id = subtitles.id "
        "WHERE subtitles.content_sha256 IS NOT NULL AND (source.subtitle_id IS NULL "
        "OR source.made_by <> ?1 OR source.content_sha256 <> subtitles.content_sha256 "
        "OR source.encoding <> subtitles.encoding OR source.language <> ") +
    likelyLanguage + ")";

StoredLine lineOfRow(const SQLite::Statement &row) {
    return {row.getColumn(0).getInt64(), row.getColumn(1).getInt(), row.getColumn(2).getInt64(),
            row.getColumn(3).getInt64(), textOf(row.getColumn(4))};
}

void removeOf(SQLite::Database &connection, qint32 subtitleId) {
    for (const char *from : {"words_met", "lines", "line_sources"}) {
        SQLite::Statement remove(connection, std::string("DELETE FROM ") + from + " WHERE subtitle_id = ?");
        remove.bind(1, subtitleId);
        remove.exec();
    }
}

// Takes the sources as they were read; none when the subtitle has become another since.
bool writeSource(SQLite::Database &connection, const Subtitle &subtitle, int madeBy) {
    SQLite::Statement add(connection,
                          std::string("INSERT INTO line_sources (subtitle_id, content_sha256, encoding, "
                                      "language, made_by) SELECT id, content_sha256, encoding, ") +
                              likelyLanguage +
                              ", ? FROM subtitles WHERE id = ? AND content_sha256 = ? AND "
                              "encoding = ? AND " +
                              likelyLanguage + " = ?");
    add.bind(1, madeBy);
    add.bind(2, subtitle.id);
    add.bind(3, subtitle.contentSha256.constData(), static_cast<int>(subtitle.contentSha256.size()));
    add.bind(4, subtitle.encoding.toStdString());
    add.bind(5, subtitle.likelyLanguage().toStdString());
    return add.exec() == 1;
}

// The last line first: whoever reads from the newest line on meets each film in its order.
QList<qint64> writeLines(SQLite::Database &connection, qint32 subtitleId, const QList<Cue> &cues) {
    QList<qint64> ids(cues.size());
    SQLite::Statement add(connection, "INSERT INTO lines (id, subtitle_id, start_ms, end_ms, text) VALUES "
                                      "(?, ?, ?, ?, ?)");
    qint64 next = connection.execAndGet("SELECT IFNULL(max(id), 0) + 1 FROM lines").getInt64();
    for (qsizetype i = cues.size() - 1; i >= 0; --i, ++next) {
        add.reset();
        add.bind(1, static_cast<int64_t>(next));
        add.bind(2, subtitleId);
        add.bind(3, static_cast<int64_t>(cues[i].startMs));
        add.bind(4, static_cast<int64_t>(cues[i].endMs));
        add.bind(5, cues[i].lines.join(u'\n').toStdString());
        add.exec();
        ids[i] = next;
    }
    return ids;
}

void writeWords(SQLite::Database &connection, qint32 subtitleId, const QList<MetWord> &words,
                const QList<qint64> &lineIds) {
    SQLite::Statement add(connection, "INSERT INTO words_met (subtitle_id, lemma, form, count, is_name, "
                                      "line_id, forms) VALUES (?, ?, ?, ?, ?, ?, ?)");
    for (const MetWord &word : words) {
        add.reset();
        add.bind(1, subtitleId);
        add.bind(2, word.lemma.toStdString());
        add.bind(3, word.form.toStdString());
        add.bind(4, word.count);
        add.bind(5, word.isName ? 1 : 0);
        add.bind(6, static_cast<int64_t>(lineIds.value(word.cue)));
        add.bind(7, word.forms.join(u' ').toStdString());
        add.exec();
    }
}

// A phrase for the index, whatever stands in the text. NUL would end it.
std::string matchOf(const LineQuery &sought) {
    QString phrase = sought.phrase;
    phrase.remove(QChar(u'\0')).replace(u'"', u' ');
    return '"' + phrase.toStdString() + (sought.isWholeWord ? "\"" : "\" *");
}

// A damaged length asks for more memory than there can be before anything else is noticed of the damage.
bool maySayDamagedIndex(const SQLite::Exception &failure) {
    const int code = failure.getErrorCode() & 0xff;
    return code == SQLITE_CORRUPT || code == SQLITE_NOMEM;
}

} // namespace

// One that is damaged can neither be emptied nor dropped by its own means: its tables are first made those of
// an index of nothing.
void LineTable::remakeIndex(SQLite::Database &connection) {
    connection.exec("DELETE FROM line_texts_data;"
                    "INSERT INTO line_texts_data VALUES (1, x''), (10, x'00000000000000');"
                    "DELETE FROM line_texts_idx;"
                    "DELETE FROM line_texts_docsize;"
                    "DELETE FROM line_texts_config;"
                    "INSERT INTO line_texts_config VALUES ('version', 4);");
    const std::string definition =
        connection.execAndGet("SELECT sql FROM sqlite_master WHERE name = 'line_texts'").getString();
    connection.exec("DROP TABLE line_texts");
    connection.exec(definition);
    connection.exec("INSERT INTO line_texts (line_texts) VALUES ('rebuild')");
}

template<typename Use>
std::invoke_result_t<Use> LineTable::mendingIndex(const Use &use) {
    try {
        return use();
    } catch (const SQLite::Exception &failure) {
        if (!maySayDamagedIndex(failure))
            throw;
        _database.transact(remakeIndex); // all of it is in the lines
        return use();
    }
}

QList<qint32> LineTable::due(int madeBy, qint32 filmId) {
    return _database.run([madeBy, filmId](SQLite::Database &connection) {
        SQLite::Statement query(connection, selectDue + " AND (?2 = 0 OR film_id = ?2) ORDER BY id");
        query.bind(1, madeBy);
        query.bind(2, filmId);
        QList<qint32> ids;
        while (query.executeStep())
            ids.append(query.getColumn(0).getInt());
        return ids;
    });
}

bool LineTable::isDue(int madeBy, qint32 subtitleId) {
    return _database.run([madeBy, subtitleId](SQLite::Database &connection) {
        SQLite::Statement query(connection, selectDue + " AND id = ?2");
        query.bind(1, madeBy);
        query.bind(2, subtitleId);
        return query.executeStep();
    });
}

void LineTable::replace(const Subtitle &subtitle, int madeBy, const QList<Cue> &cues,
                        const QList<MetWord> &words) {
    mendingIndex([&] {
        _database.transact([&](SQLite::Database &connection) {
            removeOf(connection, subtitle.id);
            if (!writeSource(connection, subtitle, madeBy))
                return;
            writeWords(connection, subtitle.id, words, writeLines(connection, subtitle.id, cues));
        });
    });
}

QList<MetWord> LineTable::words(qint32 subtitleId) {
    return _database.run([subtitleId](SQLite::Database &connection) {
        SQLite::Statement query(connection,
                                "SELECT lemma, form, count, is_name, line_id, forms FROM words_met "
                                "WHERE subtitle_id = ?");
        query.bind(1, subtitleId);
        QList<MetWord> found;
        while (query.executeStep())
            found.append({textOf(query.getColumn(0)), textOf(query.getColumn(1)),
                          textOf(query.getColumn(5)).split(u' ', Qt::SkipEmptyParts),
                          query.getColumn(2).getInt(), query.getColumn(3).getInt() != 0, 0,
                          query.getColumn(4).getInt64()});
        return found;
    });
}

QList<MetWord> LineTable::wordCounts(qint32 subtitleId) {
    return _database.run([subtitleId](SQLite::Database &connection) {
        SQLite::Statement query(connection,
                                "SELECT lemma, count, is_name FROM words_met WHERE subtitle_id = ?");
        query.bind(1, subtitleId);
        QList<MetWord> found;
        while (query.executeStep()) {
            MetWord &met = found.emplace_back();
            met.lemma = textOf(query.getColumn(0));
            met.count = query.getColumn(1).getInt();
            met.isName = query.getColumn(2).getInt() != 0;
        }
        return found;
    });
}

QList<StoredLine> LineTable::between(qint32 subtitleId, qint64 fromMs, qint64 toMs) {
    return _database.run([&](SQLite::Database &connection) {
        SQLite::Statement query(connection, "SELECT id, subtitle_id, start_ms, end_ms, text FROM lines "
                                            "WHERE subtitle_id = ? AND start_ms BETWEEN ? AND ? "
                                            "ORDER BY start_ms, id DESC");
        query.bind(1, subtitleId);
        query.bind(2, static_cast<int64_t>(fromMs));
        query.bind(3, static_cast<int64_t>(toMs));
        QList<StoredLine> found;
        while (query.executeStep())
            found.append(lineOfRow(query));
        return found;
    });
}

std::optional<StoredLine> LineTable::line(qint64 lineId) {
    return _database.run([lineId](SQLite::Database &connection) -> std::optional<StoredLine> {
        SQLite::Statement query(connection,
                                "SELECT id, subtitle_id, start_ms, end_ms, text FROM lines WHERE id = ?");
        query.bind(1, static_cast<int64_t>(lineId));
        if (!query.executeStep())
            return std::nullopt;
        return lineOfRow(query);
    });
}

QList<FoundLine> LineTable::search(const LineQuery &sought, qint64 belowId, qint32 count) {
    return mendingIndex([&] { return find(sought, belowId, count); });
}

QList<FoundLine> LineTable::find(const LineQuery &sought, qint64 belowId, qint32 count) {
    return _database.run([&](SQLite::Database &connection) {
        SQLite::Statement query(
            connection, std::string("SELECT lines.id, subtitle_id, start_ms, end_ms, lines.text, film_id "
                                    "FROM line_texts CROSS JOIN lines ON lines.id = line_texts.rowid "
                                    "CROSS JOIN subtitles ON subtitles.id = subtitle_id "
                                    "WHERE line_texts MATCH ?1 AND (?2 = '' OR ?2 = ") +
                            likelyLanguage + ") " +
                            (belowId > 0 ? "AND line_texts.rowid < ?3 " : "AND ?3 = 0 ") +
                            "ORDER BY line_texts.rowid DESC LIMIT ?4");
        query.bind(1, matchOf(sought));
        query.bind(2, sought.language.toStdString());
        query.bind(3, static_cast<int64_t>(belowId));
        query.bind(4, count);
        QList<FoundLine> found;
        while (query.executeStep())
            found.append({lineOfRow(query), query.getColumn(5).getInt()});
        return found;
    });
}

} // namespace murvo::service
