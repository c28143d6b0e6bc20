// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/Database.h"

#include <QDir>
#include <QFile>

#include <SQLiteCpp/Backup.h>
#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <tuple>

namespace murvo::service {

namespace {

// Another Murvo may hold the write lock for the length of one small transaction.
constexpr std::chrono::milliseconds busyTimeout{5000};

} // namespace

Database::Database(const QString &filePath, const QList<SchemaStep> &steps)
    : _connection(filePath.toStdString(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE,
                  static_cast<int>(busyTimeout.count())) {
    _connection.exec("PRAGMA journal_mode = WAL");
    // FULL: what was acknowledged also survives a power cut; writes are rare enough not to care.
    _connection.exec("PRAGMA synchronous = FULL");
    _connection.exec("PRAGMA foreign_keys = ON");
    migrate(steps);
}

QList<Database::SchemaStep> Database::builtInSteps() {
    QList<SchemaStep> steps;
    const QDir folder(QStringLiteral(":/murvo/schema"));
    for (const QString &name : folder.entryList({QStringLiteral("*.sql")}, QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            throw std::runtime_error("a schema file is missing from the program");
        steps.append({name.section(u'.', 0, 0).toInt(), QString::fromUtf8(file.readAll())});
    }
    std::sort(steps.begin(), steps.end(), [](const auto &a, const auto &b) { return a.number < b.number; });
    return steps;
}

void Database::takeAllOf(SQLite::Database &other, const std::function<void()> &first) {
    run([&](SQLite::Database &connection) {
        first();
        {
            SQLite::Backup backup(connection, other);
            // Another Murvo's small write may be in the way.
            const auto limit = std::chrono::steady_clock::now() + busyTimeout;
            while (backup.executeStep() != SQLITE_DONE) {
                if (std::chrono::steady_clock::now() > limit)
                    throw std::runtime_error("the store is busy");
                sqlite3_sleep(10);
            }
        }
        // It is all here now. That the log becomes small again may fail, as for want of room.
        std::ignore = connection.tryExec("PRAGMA wal_checkpoint(TRUNCATE)");
    });
}

Database::Generation Database::generation() {
    return run([](SQLite::Database &connection) {
        return Generation{connection.getTotalChanges(),
                          connection.execAndGet("PRAGMA data_version").getInt()};
    });
}

// A limit of the size of files, a quota, and a full disk tell themselves in different ways.
void Database::throwIfFull(const SQLite::Exception &failure) {
    // A backup tells the code only.
    const int extended = failure.getExtendedErrorCode();
    switch (extended < 0 ? failure.getErrorCode() : extended) {
    case SQLITE_FULL:
    case SQLITE_IOERR_WRITE:
    case SQLITE_IOERR_SHMSIZE:
        throw DiskFull();
    default:
        return;
    }
}

void Database::migrate(const QList<SchemaStep> &steps) {
    SQLite::Transaction transaction(_connection, SQLite::TransactionBehavior::IMMEDIATE);
    const int found = _connection.execAndGet("PRAGMA user_version").getInt();
    const int newest = steps.isEmpty() ? 0 : steps.last().number;
    if (found > newest)
        throw std::runtime_error("it was written by a newer version of the program");
    for (const SchemaStep &step : steps) {
        if (step.number > found)
            _connection.exec(step.sql.toStdString());
    }
    _connection.exec("PRAGMA user_version = " + std::to_string(newest));
    transaction.commit();
}

} // namespace murvo::service
