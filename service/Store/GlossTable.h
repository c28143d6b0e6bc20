// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QString>

namespace SQLite {
class Database;
}

namespace murvo::service {

class Database;

/// The table of what the learner says that words mean. Any thread; borrows the database. Every call may throw
/// SQLite::Exception. A lemma is in the form of wordKey(), a language is an ISO 639-2/T code.
class GlossTable {
  public:
    explicit GlossTable(Database &database)
        : _database(database) {}

    /// Empty when the learner has given none.
    [[nodiscard]] QString gloss(const QString &lemma, const QString &language);

    /// All of a language, by their lemmas; a learner makes some hundreds.
    [[nodiscard]] QHash<QString, QString> ofLanguage(const QString &language);

    /// Takes the place of an earlier one; empty: there is none any more.
    void setGloss(const QString &lemma, const QString &language, const QString &gloss);

    /// The same inside a transaction of another table's.
    static void write(SQLite::Database &connection, const QString &lemma, const QString &language,
                      const QString &gloss);

  private:
    Database &_database;
};

} // namespace murvo::service
