// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

namespace murvo::service {

class Database;

/// What Anki has been sent of a word.
struct SentNote {
    qint64 noteId = 0; ///< Anki's; 0 when it has none
    QByteArray sha256; ///< of all that was sent
    QString problem;   ///< why it was refused
};

/// The table of what has been sent to Anki, by the word's guid. Any thread; borrows the database. Every call
/// may throw SQLite::Exception.
class AnkiTable {
  public:
    explicit AnkiTable(Database &database)
        : _database(database) {}

    [[nodiscard]] QHash<QString, SentNote> all();
    /// It is on the disk when this returns.
    void note(const QString &guid, const SentNote &sent);

    /// Counts the changes of the whole store since the start, so that they need not be looked for.
    [[nodiscard]] int storeChanges();

  private:
    Database &_database;
};

} // namespace murvo::service
