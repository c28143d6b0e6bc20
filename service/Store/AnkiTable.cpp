// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/AnkiTable.h"

#include "Store/Columns.h"
#include "Store/Database.h"

namespace murvo::service {

QHash<QString, SentNote> AnkiTable::all() {
    return _database.run([](SQLite::Database &connection) {
        SQLite::Statement query(connection,
                                "SELECT guid, lemma, note_id, sent_sha256, problem FROM anki_notes "
                                "JOIN words USING (guid)");
        QHash<QString, SentNote> notes;
        while (query.executeStep()) {
            notes.insert(textOf(query.getColumn(0)),
                         {textOf(query.getColumn(1)), query.getColumn(2).getInt64(),
                          blobOf(query.getColumn(3)), textOf(query.getColumn(4))});
        }
        return notes;
    });
}

void AnkiTable::note(const QString &guid, const SentNote &sent) {
    _database.transact([&](SQLite::Database &connection) {
        SQLite::Statement update(connection,
                                 "INSERT INTO anki_notes (guid, note_id, sent_sha256, problem) "
                                 "VALUES (?, ?, ?, ?) ON CONFLICT (guid) DO UPDATE SET "
                                 "note_id = excluded.note_id, sent_sha256 = excluded.sent_sha256, "
                                 "problem = excluded.problem");
        update.bind(1, guid.toStdString());
        update.bind(2, static_cast<int64_t>(sent.noteId));
        update.bind(3, sent.sha256.constData(), static_cast<int>(sent.sha256.size()));
        update.bind(4, sent.problem.toStdString());
        update.exec();
    });
}

void AnkiTable::forgetRefusals() {
    _database.transact(
        [](SQLite::Database &connection) { connection.exec("DELETE FROM anki_notes WHERE problem <> ''"); });
}

} // namespace murvo::service
