// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/SettingsTable.h"

#include "Languages.h"
#include "Store/Columns.h"
#include "Store/Database.h"
#include "Vocabulary/Level.h"

#include <QHash>

namespace murvo::service {

namespace {

constexpr int normalVolumePercent = 100;
// Who watches films in English knows some already.
constexpr QLatin1String usualStartLevel("A2");
constexpr int usualAnkiPort = 8765;

/// As they are in the table: by name, all as text.
using Rows = QHash<QString, QString>;

QString languageIn(const Rows &rows) {
    const QString code = rows.value(QStringLiteral("nativeLanguage"));
    const Language *language = findLanguage(code);
    return language != nullptr && language->offered && language->code == code ? code
                                                                              : defaultNativeLanguage();
}

int numberIn(const Rows &rows, const QString &name, int least, int most, int otherwise) {
    bool isNumber = false;
    const int number = rows.value(name).toInt(&isNumber);
    return isNumber && number >= least && number <= most ? number : otherwise;
}

Settings settingsOf(const Rows &rows) {
    const QString level = rows.value(QStringLiteral("startLevel"));
    return {languageIn(rows),
            numberIn(rows, QStringLiteral("volumePercent"), 0, Settings::loudestPercent, normalVolumePercent),
            isLevel(level) ? level : usualStartLevel,
            rows.value(QStringLiteral("sendsToAnki")) == QLatin1String("1"),
            numberIn(rows, QStringLiteral("ankiConnectPort"), 1, Settings::highestPort, usualAnkiPort),
            rows.value(QStringLiteral("ankiConnectKey")).left(Settings::longestKey)};
}

Rows rowsOfThisComputer(const Settings &settings) {
    return {{QStringLiteral("sendsToAnki"), QString::number(settings.sendsToAnki ? 1 : 0)},
            {QStringLiteral("ankiConnectPort"), QString::number(settings.ankiConnectPort)},
            {QStringLiteral("ankiConnectKey"), settings.ankiConnectKey}};
}

Rows rowsOf(const Settings &settings) {
    Rows rows = rowsOfThisComputer(settings);
    rows.insert(QStringLiteral("nativeLanguage"), settings.nativeLanguage);
    rows.insert(QStringLiteral("volumePercent"), QString::number(settings.volumePercent));
    rows.insert(QStringLiteral("startLevel"), settings.startLevel);
    return rows;
}

Settings read(SQLite::Database &connection) {
    SQLite::Statement query(connection, "SELECT name, value FROM settings");
    Rows rows;
    while (query.executeStep())
        rows.insert(textOf(query.getColumn(0)), textOf(query.getColumn(1)));
    return settingsOf(rows);
}

void write(SQLite::Database &connection, const Rows &rows) {
    SQLite::Statement update(connection, "INSERT INTO settings (name, value) VALUES (?, ?) "
                                         "ON CONFLICT (name) DO UPDATE SET value = excluded.value");
    for (auto row = rows.begin(); row != rows.end(); ++row) {
        update.reset();
        update.bind(1, row.key().toStdString());
        update.bind(2, row.value().toStdString());
        update.exec();
    }
}

} // namespace

Settings SettingsTable::all() {
    return _database.run([](SQLite::Database &connection) { return read(connection); });
}

void SettingsTable::update(const std::function<void(Settings &)> &change) {
    _database.transact([&change](SQLite::Database &connection) {
        Settings settings = read(connection);
        const Rows before = rowsOf(settings);
        change(settings);
        Rows rows = rowsOf(settings);
        // What was never chosen stays as at first, whatever that is one day.
        rows.removeIf([&before](const Rows::iterator &row) { return before[row.key()] == row.value(); });
        write(connection, rows);
    });
}

void SettingsTable::copyThoseOfThisComputer(SQLite::Database &other) {
    write(other, rowsOfThisComputer(all()));
}

} // namespace murvo::service
