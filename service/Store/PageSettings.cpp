// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/PageSettings.h"

#include "Store/Columns.h"
#include "Store/Database.h"

#include <QJsonDocument>

namespace murvo::service {

namespace {

constexpr auto rowName = "pages";

// What another program has damaged is as at first.
QJsonObject read(SQLite::Database &connection) {
    SQLite::Statement query(connection, "SELECT value FROM settings WHERE name = ?");
    query.bind(1, rowName);
    return query.executeStep() ? QJsonDocument::fromJson(textOf(query.getColumn(0)).toUtf8()).object()
                               : QJsonObject();
}

} // namespace

QJsonObject PageSettings::all() {
    return _database.run([](SQLite::Database &connection) { return read(connection); });
}

bool PageSettings::change(const QJsonObject &values) {
    return _database.transact([&values](SQLite::Database &connection) {
        QJsonObject kept = read(connection);
        for (auto value = values.begin(); value != values.end(); ++value) {
            if (value->isNull())
                kept.remove(value.key());
            else
                kept.insert(value.key(), *value);
        }
        const QByteArray text = QJsonDocument(kept).toJson(QJsonDocument::Compact);
        if (text.size() >= mostBytes)
            return false;
        SQLite::Statement update(connection, "INSERT INTO settings (name, value) VALUES (?, ?) "
                                             "ON CONFLICT (name) DO UPDATE SET value = excluded.value");
        update.bind(1, rowName);
        update.bind(2, text.toStdString());
        update.exec();
        return true;
    });
}

} // namespace murvo::service
