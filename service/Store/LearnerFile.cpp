// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/LearnerFile.h"

#include "Store/Columns.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryFile>

namespace murvo::service {

namespace {

using Reason = LearnerFileError::Reason;

constexpr int busyMs = 5000;
constexpr qsizetype backupsKept = 3;
constexpr qint64 leftoverSeconds = 3600;

// Everything that a schema file makes, in one text each: the tables with their columns, indexes, triggers.
QSet<QString> schemaOf(SQLite::Database &connection) {
    SQLite::Statement query(connection, "SELECT type || ' ' || name || ': ' || IFNULL(sql, '') "
                                        "FROM sqlite_master");
    QSet<QString> schema;
    while (query.executeStep())
        schema.insert(textOf(query.getColumn(0)));
    return schema;
}

QSet<QString> schemaBy(const QList<Database::SchemaStep> &steps, int number) {
    SQLite::Database empty(":memory:", SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    for (const Database::SchemaStep &step : steps) {
        if (step.number <= number)
            empty.exec(step.sql.toStdString());
    }
    return schemaOf(empty);
}

bool hasRows(SQLite::Database &connection, const char *query) {
    return SQLite::Statement(connection, query).executeStep();
}

void vacuumInto(SQLite::Database &connection, const QString &path) {
    SQLite::Statement vacuum(connection, "VACUUM INTO ?");
    vacuum.bind(1, path.toStdString());
    vacuum.exec();
}

} // namespace

QString LearnerFile::folder() const {
    return QFileInfo(_storePath).path();
}

// Another Murvo may be at work in the same folder.
void LearnerFile::removeLeftovers() const {
    QDir beside(folder());
    const QDateTime longAgo = QDateTime::currentDateTime().addSecs(-leftoverSeconds);
    for (const QFileInfo &file : beside.entryInfoList({QStringLiteral("murvo-copy-*")}, QDir::Files)) {
        if (file.lastModified() < longAgo)
            beside.remove(file.fileName());
    }
}

// A connection of its own: nobody who plays a film waits for it.
std::unique_ptr<QFile> LearnerFile::copy() const {
    auto file = std::make_unique<QTemporaryFile>(folder() + QStringLiteral("/murvo-copy-XXXXXX"));
    if (!file->open())
        throw DiskFull();
    try {
        SQLite::Database source(_storePath.toStdString(), SQLite::OPEN_READWRITE, busyMs);
        vacuumInto(source, file->fileName());
    } catch (const SQLite::Exception &failure) {
        Database::throwIfFull(failure);
        throw;
    }
    return file;
}

QString LearnerFile::replaceBy(const QString &path, const std::function<void()> &beforeTaking) const {
    check(path);
    try {
        { Database brought(path, _steps); } // to the newest schema
        SQLite::Database source(path.toStdString(), SQLite::OPEN_READWRITE, busyMs);
        const QString backup = backUp();
        beforeTaking();
        _database.takeAllOf(source);
        return backup;
    } catch (const SQLite::Exception &failure) {
        Database::throwIfFull(failure);
        throw;
    }
}

// The file may be anybody's: it is only read, none of its triggers and functions run, and it must be, word
// for word, what this program would have made.
void LearnerFile::check(const QString &path) const {
    try {
        SQLite::Database file(path.toStdString(), SQLite::OPEN_READWRITE, busyMs);
        file.exec("PRAGMA trusted_schema = OFF");
        file.exec("PRAGMA cell_size_check = ON");
        const int number = file.execAndGet("PRAGMA user_version").getInt();
        if (number > _steps.last().number && file.tableExists("films"))
            throw LearnerFileError(Reason::Newer);
        if (number < 1 || schemaOf(file) != schemaBy(_steps, number))
            throw LearnerFileError(Reason::NotOurs);
        if (file.execAndGet("PRAGMA integrity_check(1)").getString() != "ok" ||
            hasRows(file, "PRAGMA foreign_key_check"))
            throw LearnerFileError(Reason::Damaged);
        // The store takes pages of its own size only.
        file.exec("PRAGMA journal_mode = DELETE");
        if (const int pageSize = _database.run([](SQLite::Database &connection) {
                return connection.execAndGet("PRAGMA page_size").getInt();
            });
            file.execAndGet("PRAGMA page_size").getInt() != pageSize) {
            file.exec("PRAGMA page_size = " + std::to_string(pageSize));
            file.exec("VACUUM");
        }
    } catch (const SQLite::Exception &failure) {
        Database::throwIfFull(failure);
        QFile file(path);
        const bool isDatabase = file.open(QIODevice::ReadOnly) && file.read(16).startsWith("SQLite format 3");
        throw LearnerFileError(isDatabase ? Reason::Damaged : Reason::NotOurs);
    }
}

QString LearnerFile::backUp() const {
    const QDir beside(folder());
    const QString now = QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMdd-HHmmss-zzz"));
    const QString backup = beside.filePath(QStringLiteral("murvo-before-%1.sqlite").arg(now));
    SQLite::Database source(_storePath.toStdString(), SQLite::OPEN_READWRITE, busyMs);
    try {
        vacuumInto(source, backup);
    } catch (const SQLite::Exception &) {
        QFile::remove(backup);
        throw;
    }
    QFile::setPermissions(backup, QFile::ReadOwner | QFile::WriteOwner);
    QStringList backups =
        beside.entryList({QStringLiteral("murvo-before-*.sqlite")}, QDir::Files, QDir::Name);
    while (backups.size() > backupsKept)
        QFile::remove(beside.filePath(backups.takeFirst()));
    return backup;
}

} // namespace murvo::service
