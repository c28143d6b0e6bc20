// SPDX-License-Identifier: GPL-3.0-or-later
#include "Vocabulary/SavedWord.h"

#include "Store/Columns.h"
#include "Store/Database.h"

namespace murvo::service {

namespace {

SavedWord wordOfRow(SQLite::Statement &row) {
    SavedWord word;
    word.guid = textOf(row.getColumn(0));
    word.lemma = textOf(row.getColumn(1));
    word.status = wordStatusNamed(textOf(row.getColumn(2))).value_or(WordStatus::New);
    word.addedAtMs = row.getColumn(3).getInt64();
    word.gloss = textOf(row.getColumn(4));
    word.form = textOf(row.getColumn(5));
    word.line = textOf(row.getColumn(6));
    word.translation = textOf(row.getColumn(7));
    word.filmId = row.getColumn(8).getInt();
    word.filmName = textOf(row.getColumn(9));
    word.filmPath = textOf(row.getColumn(10));
    word.startMs = row.getColumn(11).getInt64();
    word.endMs = row.getColumn(12).getInt64();
    word.savedAtMs = row.getColumn(13).getInt64();
    return word;
}

} // namespace

QList<SavedWord> savedWords(Database &database, const QString &glossLanguage) {
    return database.run([&glossLanguage](SQLite::Database &connection) {
        SQLite::Statement query(
            connection,
            "SELECT words.guid, words.lemma, words.status, words.added_ms, glosses.gloss, sightings.form, "
            "sightings.line, sightings.translation, sightings.film_id, films.name, films.path, "
            "sightings.start_ms, sightings.end_ms, sightings.saved_ms FROM words "
            "LEFT JOIN glosses ON glosses.lemma = words.lemma AND glosses.language = ? "
            "LEFT JOIN sightings ON sightings.id = (SELECT id FROM sightings AS one "
            "WHERE one.lemma = words.lemma ORDER BY one.saved_ms DESC, one.id DESC LIMIT 1) "
            "LEFT JOIN films ON films.id = sightings.film_id ORDER BY words.added_ms, words.lemma");
        query.bind(1, glossLanguage.toStdString());
        QList<SavedWord> words;
        while (query.executeStep())
            words.append(wordOfRow(query));
        return words;
    });
}

} // namespace murvo::service
