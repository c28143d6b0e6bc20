// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/GlossTable.h"

#include "Store/Columns.h"
#include "Store/Database.h"

#include <QDateTime>

namespace murvo::service {

QString GlossTable::gloss(const QString &lemma, const QString &language) {
    return _database.run([&lemma, &language](SQLite::Database &connection) {
        SQLite::Statement query(connection, "SELECT gloss FROM glosses WHERE lemma = ? AND language = ?");
        query.bind(1, lemma.toStdString());
        query.bind(2, language.toStdString());
        return query.executeStep() ? textOf(query.getColumn(0)) : QString();
    });
}

QHash<QString, QString> GlossTable::ofLanguage(const QString &language) {
    return _database.run([&language](SQLite::Database &connection) {
        SQLite::Statement query(connection, "SELECT lemma, gloss FROM glosses WHERE language = ?");
        query.bind(1, language.toStdString());
        QHash<QString, QString> glosses;
        while (query.executeStep())
            glosses.insert(textOf(query.getColumn(0)), textOf(query.getColumn(1)));
        return glosses;
    });
}

void GlossTable::setGloss(const QString &lemma, const QString &language, const QString &gloss) {
    _database.transact([&](SQLite::Database &connection) { write(connection, lemma, language, gloss); });
}

void GlossTable::write(SQLite::Database &connection, const QString &lemma, const QString &language,
                       const QString &gloss) {
    SQLite::Statement update(connection, gloss.isEmpty()
                                             ? "DELETE FROM glosses WHERE lemma = ? AND language = ?"
                                             : "INSERT OR REPLACE INTO glosses (lemma, language, gloss, "
                                               "changed_ms) VALUES (?, ?, ?, ?)");
    update.bind(1, lemma.toStdString());
    update.bind(2, language.toStdString());
    if (!gloss.isEmpty()) {
        update.bind(3, gloss.toStdString());
        update.bind(4, static_cast<int64_t>(QDateTime::currentMSecsSinceEpoch()));
    }
    update.exec();
}

} // namespace murvo::service
