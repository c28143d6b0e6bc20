// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

namespace murvo::service {

class Database;

/// What Anki has been sent of a word.
struct SentNote {
    static constexpr qint64 deleted = -1;

    QString lemma;     ///< of the word; read only
    qint64 noteId = 0; ///< Anki's; 0 when it has refused it, deleted when the learner has deleted it there
    QByteArray sha256; ///< of all that was sent
    QString problem;   ///< why it was refused, empty when it was not
};

/// The table of what has been sent to Anki, by the word's guid. Any thread; borrows the database. Every call
/// may throw SQLite::Exception.
class AnkiTable {
  public:
    explicit AnkiTable(Database &database)
        : _database(database) {}

    /// Of the words that are marked now.
    [[nodiscard]] QHash<QString, SentNote> all();
    /// It is on the disk when this returns.
    void note(const QString &guid, const SentNote &sent);

    /// What was refused was never sent.
    void forgetRefusals();

  private:
    Database &_database;
};

} // namespace murvo::service
