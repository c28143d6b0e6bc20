// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>

namespace SQLite {
class Database;
}

namespace murvo::service {

class Database;

/// What the learner has chosen.
struct Settings {
    static constexpr int loudestPercent = 200;
    static constexpr int highestPort = 65'535;
    static constexpr qsizetype longestKey = 200;

    QString nativeLanguage;   ///< ISO 639-2/T code of an offered language
    int volumePercent = 100;  ///< of the film, 0 to 200, 100 normal
    QString startLevel;       ///< name of the level of English at which the learner began
    bool sendsToAnki = false; ///< whether words are sent to the Anki that runs on this computer
    int ankiConnectPort = 0;  ///< on which it takes them, 1 to 65535
    QString ankiConnectKey;   ///< which it demands, at most 200 characters; empty when it does not
};

/// The table of what the learner has chosen. Any thread; borrows the database. Every call may throw
/// SQLite::Exception. What the store lacks or has out of its range is as at first; what is written the
/// callers check.
class SettingsTable {
  public:
    explicit SettingsTable(Database &database)
        : _database(database) {}

    [[nodiscard]] Settings all();
    [[nodiscard]] QString nativeLanguage() { return all().nativeLanguage; }

    /// Keeps what change() makes of them, all or nothing; when it throws, nothing.
    void update(const std::function<void(Settings &)> &change);

    /// Puts what is of this computer, not of the learner, into another store in place of what that has.
    void copyThoseOfThisComputer(SQLite::Database &other);

  private:
    Database &_database;
};

} // namespace murvo::service
