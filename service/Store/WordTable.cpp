// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/WordTable.h"

#include "Store/Columns.h"
#include "Store/Database.h"
#include "Store/FilmTable.h"
#include "Store/GlossTable.h"
#include "Store/ReviewTable.h"
#include "Vocabulary/FoldedText.h"
#include "Vocabulary/ReviewPlan.h"

#include <QDateTime>
#include <QUuid>

#include <sqlite3.h>

#include <algorithm>
#include <limits>

namespace murvo::service {

namespace {

// With the line in which the word was saved last (in film ?2, unless that is 0), and the gloss in language
// ?1.
constexpr auto selectWords =
    "SELECT words.guid, words.lemma, words.status, words.added_ms, words.changed_ms, glosses.gloss, "
    "sightings.form, sightings.line, sightings.translation, sightings.film_id, films.name, films.path, "
    "sightings.start_ms, sightings.end_ms, sightings.saved_ms, words.due_ms, films.identity FROM words "
    "LEFT JOIN glosses ON glosses.lemma = words.lemma AND glosses.language = ?1 "
    "LEFT JOIN sightings ON sightings.id = (SELECT id FROM sightings AS one WHERE one.lemma = words.lemma "
    "AND ?2 IN (0, one.film_id) ORDER BY one.saved_ms DESC, one.id DESC LIMIT 1) "
    "LEFT JOIN films ON films.id = sightings.film_id ";

SavedWord wordOfRow(SQLite::Statement &row) {
    SavedWord word;
    word.guid = textOf(row.getColumn(0));
    word.lemma = textOf(row.getColumn(1));
    word.status = wordStatusNamed(textOf(row.getColumn(2))).value_or(WordStatus::New);
    word.addedAtMs = row.getColumn(3).getInt64();
    word.changedAtMs = row.getColumn(4).getInt64();
    word.gloss = textOf(row.getColumn(5));
    word.form = textOf(row.getColumn(6));
    word.line = textOf(row.getColumn(7));
    word.translation = textOf(row.getColumn(8));
    word.filmId = row.getColumn(9).getInt();
    word.filmName = textOf(row.getColumn(10));
    word.filmPath = textOf(row.getColumn(11));
    word.startMs = row.getColumn(12).getInt64();
    word.endMs = row.getColumn(13).getInt64();
    word.savedAtMs = row.getColumn(14).getInt64();
    if (!row.getColumn(15).isNull())
        word.dueAtMs = row.getColumn(15).getInt64();
    word.filmSizeBytes = sizeOfIdentity(textOf(row.getColumn(16)));
    return word;
}

// Names of statuses are letters and digits.
std::string conditionOf(const WordQuery &query) {
    std::string condition = "WHERE (?2 = 0 OR sightings.id IS NOT NULL)";
    if (query.dueUntilMs)
        condition += " AND " + conditionOfDue(*query.dueUntilMs);
    if (!query.text.isEmpty())
        condition += " AND (instr(folded(words.lemma), ?3) > 0 OR instr(folded(glosses.gloss), ?3) > 0)";
    std::string names;
    for (const WordStatus status : query.statuses)
        names += (names.empty() ? "'" : ", '") + nameOf(status).toString().toStdString() + '\'';
    return names.empty() ? condition : condition + " AND words.status IN (" + names + ')';
}

const char *orderOf(WordOrder order) {
    switch (order) {
    case WordOrder::Changed:
        return " ORDER BY words.changed_ms DESC, words.lemma";
    case WordOrder::Saved:
        return " ORDER BY sightings.saved_ms DESC, words.lemma";
    case WordOrder::Alphabet:
        return " ORDER BY words.lemma";
    case WordOrder::Due:
        return " ORDER BY words.due_ms IS NULL, words.due_ms, words.lemma";
    case WordOrder::Added:
        break;
    }
    return " ORDER BY words.added_ms DESC, words.lemma";
}

// foldedText() for the store; of NULL it is NULL.
void folded(sqlite3_context *context, int, sqlite3_value **values) noexcept {
    const auto *text = reinterpret_cast<const char *>(sqlite3_value_text(values[0]));
    if (text == nullptr)
        return;
    try {
        const QByteArray result = foldedText(QString::fromUtf8(text)).toUtf8();
        sqlite3_result_text64(context, result.constData(), static_cast<sqlite3_uint64>(result.size()),
                              SQLITE_TRANSIENT, SQLITE_UTF8);
    } catch (...) { // there is no memory for it, and the caller is C
        sqlite3_result_error_nomem(context);
    }
}

void bindQuery(SQLite::Statement &statement, const WordQuery &query, const QString &glossLanguage) {
    statement.bind(1, glossLanguage.toStdString());
    statement.bind(2, query.filmId);
    if (!query.text.isEmpty())
        statement.bind(3, foldedText(query.text).toStdString());
}

// The same on every computer, and for a word that is forgotten and saved again.
std::string guidOf(const QString &lemma) {
    static const QUuid ofWords(QStringLiteral("{6b1f6a0e-53a5-4c0f-9d0b-2f6f0c1b7a5e}"));
    return QUuid::createUuidV5(ofWords, lemma).toString(QUuid::WithoutBraces).toStdString();
}

/// Marks words, many at a time. Inside a transaction.
class WordWriter {
  public:
    explicit WordWriter(SQLite::Database &connection)
        : _add(connection, "INSERT INTO words (lemma, guid, status, added_ms, changed_ms, due_ms) "
                           "VALUES (?1, ?2, ?3, ?4, ?4, ?5) ON CONFLICT (lemma) DO NOTHING")
        , _change(connection, "UPDATE words SET status = ?2, changed_ms = ?3, due_ms = ?4 "
                              "WHERE lemma = ?1 AND status <> ?2") {}

    /// Without a status: as new, unless it is marked already. True when that changed something.
    bool write(const QString &lemma, std::optional<WordStatus> status) {
        const std::string name = nameOf(status.value_or(WordStatus::New)).toString().toStdString();
        const auto interval = reviewInterval(status.value_or(WordStatus::New));
        _add.reset();
        _add.bind(1, lemma.toStdString());
        _add.bind(2, guidOf(lemma));
        _add.bind(3, name);
        _add.bind(4, _nowMs);
        bindDue(_add, 5, interval);
        if (_add.exec() == 1)
            return true;
        if (!status)
            return false;
        _change.reset();
        _change.bind(1, lemma.toStdString());
        _change.bind(2, name);
        _change.bind(3, _nowMs);
        bindDue(_change, 4, interval);
        return _change.exec() == 1;
    }

  private:
    void bindDue(SQLite::Statement &statement, int place,
                 std::optional<std::chrono::milliseconds> interval) const {
        if (interval)
            statement.bind(place, _nowMs + static_cast<int64_t>(interval->count()));
        else
            statement.bind(place);
    }

    SQLite::Statement _add;
    SQLite::Statement _change;
    int64_t _nowMs = QDateTime::currentMSecsSinceEpoch();
};

void writeSighting(SQLite::Database &connection, const QString &lemma, const Sighting &sighting) {
    SQLite::Statement add(
        connection,
        "INSERT INTO sightings (lemma, form, line, translation, film_id, subtitle_id, start_ms, end_ms, "
        "saved_ms) VALUES (?, ?, ?, ?, NULLIF(?, 0), NULLIF(?, 0), ?, ?, ?) "
        "ON CONFLICT (lemma, line, IFNULL(film_id, 0)) DO UPDATE SET form = excluded.form, "
        "translation = excluded.translation, subtitle_id = excluded.subtitle_id, "
        "start_ms = excluded.start_ms, end_ms = excluded.end_ms, saved_ms = excluded.saved_ms");
    add.bind(1, lemma.toStdString());
    add.bind(2, sighting.form.toStdString());
    add.bind(3, sighting.line.toStdString());
    add.bind(4, sighting.translation.toStdString());
    add.bind(5, sighting.filmId);
    add.bind(6, sighting.subtitleId);
    add.bind(7, static_cast<int64_t>(sighting.startMs));
    add.bind(8, static_cast<int64_t>(sighting.endMs));
    add.bind(9, static_cast<int64_t>(QDateTime::currentMSecsSinceEpoch()));
    add.exec();
}

} // namespace

WordTable::WordTable(Database &database)
    : _database(database) {
    _database.run([](SQLite::Database &connection) {
        constexpr int parameters = 1;
        connection.createFunction("folded", parameters, true, nullptr, folded);
    });
}

std::optional<SavedWord> WordTable::find(const QString &lemma, const QString &glossLanguage) {
    return _database.run([&](SQLite::Database &connection) -> std::optional<SavedWord> {
        SQLite::Statement query(connection, std::string(selectWords) + "WHERE words.lemma = ?3");
        query.bind(1, glossLanguage.toStdString());
        query.bind(2, 0);
        query.bind(3, lemma.toStdString());
        if (!query.executeStep())
            return std::nullopt;
        return wordOfRow(query);
    });
}

QList<Sighting> WordTable::sightings(const QString &lemma) {
    return _database.run([&lemma](SQLite::Database &connection) {
        SQLite::Statement query(connection,
                                "SELECT form, line, translation, film_id, films.name, subtitle_id, start_ms, "
                                "end_ms, saved_ms FROM sightings LEFT JOIN films ON films.id = film_id "
                                "WHERE lemma = ? ORDER BY saved_ms DESC, sightings.id DESC");
        query.bind(1, lemma.toStdString());
        QList<Sighting> found;
        while (query.executeStep())
            found.append({textOf(query.getColumn(0)), textOf(query.getColumn(1)), textOf(query.getColumn(2)),
                          query.getColumn(3).getInt(), textOf(query.getColumn(4)),
                          query.getColumn(5).getInt(), query.getColumn(6).getInt64(),
                          query.getColumn(7).getInt64(), query.getColumn(8).getInt64()});
        return found;
    });
}

void WordTable::keep(const WordChange &change) {
    _database.transact([&change](SQLite::Database &connection) {
        if (change.status || change.sighting)
            WordWriter(connection).write(change.lemma, change.status);
        if (change.gloss)
            GlossTable::write(connection, change.lemma, change.glossLanguage, *change.gloss);
        if (change.sighting)
            writeSighting(connection, change.lemma, *change.sighting);
    });
}

qint32 WordTable::grade(const QList<WordGrade> &grades) {
    return _database.transact([&grades](SQLite::Database &connection) {
        WordWriter writer(connection);
        qint32 changed = 0;
        for (const WordGrade &each : grades)
            changed += writer.write(each.lemma, each.status) ? 1 : 0;
        return changed;
    });
}

bool WordTable::forget(const QString &lemma) {
    return _database.transact([&lemma](SQLite::Database &connection) {
        SQLite::Statement remove(connection, "DELETE FROM words WHERE lemma = ?");
        remove.bind(1, lemma.toStdString());
        return remove.exec() == 1;
    });
}

std::optional<WordStatus> WordTable::status(const QString &lemma) {
    return _database.run([&lemma](SQLite::Database &connection) -> std::optional<WordStatus> {
        SQLite::Statement query(connection, "SELECT status FROM words WHERE lemma = ?");
        query.bind(1, lemma.toStdString());
        return query.executeStep() ? wordStatusNamed(textOf(query.getColumn(0))) : std::nullopt;
    });
}

QHash<QString, WordStatus> WordTable::statuses() {
    return _database.run([](SQLite::Database &connection) {
        SQLite::Statement query(connection, "SELECT lemma, status FROM words");
        QHash<QString, WordStatus> found;
        while (query.executeStep()) {
            if (const auto status = wordStatusNamed(textOf(query.getColumn(1))))
                found.insert(textOf(query.getColumn(0)), *status);
        }
        return found;
    });
}

WordPage WordTable::list(const WordQuery &query, const QString &glossLanguage) {
    return _database.run([&](SQLite::Database &connection) {
        const std::string condition = conditionOf(query);
        WordPage page;
        SQLite::Statement count(connection, "SELECT count(*) FROM (" + (selectWords + condition) + ')');
        bindQuery(count, query, glossLanguage);
        count.executeStep();
        page.total = count.getColumn(0).getInt();
        SQLite::Statement select(connection,
                                 selectWords + condition + orderOf(query.order) + " LIMIT ?4 OFFSET ?5");
        bindQuery(select, query, glossLanguage);
        select.bind(4, query.count);
        select.bind(5, query.offset);
        while (select.executeStep())
            page.words.append(wordOfRow(select));
        return page;
    });
}

QList<SavedWord> WordTable::all(const QString &glossLanguage) {
    return ofStatuses({}, glossLanguage);
}

QList<SavedWord> WordTable::learned(const QString &glossLanguage) {
    return ofStatuses(QList<WordStatus>(learnedStatuses.begin(), learnedStatuses.end()), glossLanguage);
}

QList<SavedWord> WordTable::ofStatuses(const QList<WordStatus> &statuses, const QString &glossLanguage) {
    WordQuery query;
    query.statuses = statuses;
    query.count = std::numeric_limits<qint32>::max();
    QList<SavedWord> words = list(query, glossLanguage).words;
    std::reverse(words.begin(), words.end());
    return words;
}

} // namespace murvo::service
