// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace murvo::service {

class Database;

/// What the learner has chosen. Any thread; borrows the database. Every call may throw SQLite::Exception.
/// It trusts its callers for the range of values: the routes check them.
class SettingsTable {
  public:
    explicit SettingsTable(Database &database)
        : _database(database) {}

    /// ISO 639-2/T code of the learner's own language.
    [[nodiscard]] QString nativeLanguage();
    void setNativeLanguage(const QString &code);

    /// Volume of the film, 0 to 200, 100 normal.
    [[nodiscard]] int volumePercent();
    void setVolumePercent(int volume);

    /// Name of the level of English at which the learner began.
    [[nodiscard]] QString startLevel();
    void setStartLevel(const QString &level);

    /// Whether words are sent to the Anki that runs on this computer, and the port on which it takes them.
    [[nodiscard]] bool sendsToAnki();
    void setSendsToAnki(bool isOn);
    [[nodiscard]] int ankiConnectPort();
    void setAnkiConnectPort(int port);

  private:
    [[nodiscard]] QString value(const char *name, const QString &otherwise);
    void setValue(const char *name, const QString &value);

    Database &_database;
};

} // namespace murvo::service
