// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/SettingsTable.h"

#include "Languages.h"
#include "Store/Database.h"

namespace murvo::service {

namespace {

constexpr auto nativeLanguageName = "nativeLanguage";
constexpr auto volumeName = "volumePercent";
constexpr auto sendsToAnkiName = "sendsToAnki";
constexpr auto ankiPortName = "ankiConnectPort";
constexpr auto startLevelName = "startLevel";
constexpr int normalVolumePercent = 100;
// Who watches films in English knows some already.
constexpr QLatin1String usualStartLevel("A2");
constexpr int usualAnkiPort = 8765;

} // namespace

QString SettingsTable::nativeLanguage() {
    return value(nativeLanguageName, defaultNativeLanguage());
}

void SettingsTable::setNativeLanguage(const QString &code) {
    setValue(nativeLanguageName, code);
}

int SettingsTable::volumePercent() {
    return value(volumeName, QString::number(normalVolumePercent)).toInt();
}

void SettingsTable::setVolumePercent(int volume) {
    setValue(volumeName, QString::number(volume));
}

QString SettingsTable::startLevel() {
    return value(startLevelName, usualStartLevel);
}

void SettingsTable::setStartLevel(const QString &level) {
    setValue(startLevelName, level);
}

bool SettingsTable::sendsToAnki() {
    return value(sendsToAnkiName, QStringLiteral("0")) == QLatin1String("1");
}

void SettingsTable::setSendsToAnki(bool isOn) {
    setValue(sendsToAnkiName, QString::number(isOn ? 1 : 0));
}

int SettingsTable::ankiConnectPort() {
    return value(ankiPortName, QString::number(usualAnkiPort)).toInt();
}

void SettingsTable::setAnkiConnectPort(int port) {
    setValue(ankiPortName, QString::number(port));
}

QString SettingsTable::value(const char *name, const QString &otherwise) {
    return _database.run([name, &otherwise](SQLite::Database &connection) {
        SQLite::Statement query(connection, "SELECT value FROM settings WHERE name = ?");
        query.bind(1, name);
        return query.executeStep() ? QString::fromStdString(query.getColumn(0).getString()) : otherwise;
    });
}

void SettingsTable::setValue(const char *name, const QString &value) {
    _database.transact([name, &value](SQLite::Database &connection) {
        SQLite::Statement update(connection, "INSERT INTO settings (name, value) VALUES (?, ?) "
                                             "ON CONFLICT (name) DO UPDATE SET value = excluded.value");
        update.bind(1, name);
        update.bind(2, value.toStdString());
        update.exec();
    });
}

} // namespace murvo::service
