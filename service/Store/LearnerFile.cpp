// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/LearnerFile.h"

#include "Store/Columns.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryFile>

#include <sqlite3.h>
#include <unistd.h>

namespace murvo::service {

namespace {

using Reason = LearnerFileError::Reason;

constexpr int busyMs = 5000;
constexpr qsizetype lastBackupsKept = 10;
constexpr qint64 leftoverSeconds = 3600;

// The text of a schema without its comments, and with one blank for any.
QString plainSql(const QString &sql) {
    QString plain;
    QChar quote;
    for (qsizetype i = 0; i < sql.size(); ++i) {
        const bool isComment = quote.isNull() && QStringView(sql).sliced(i).startsWith(QLatin1String("--"));
        if (isComment) {
            const qsizetype end = sql.indexOf(u'\n', i);
            i = end < 0 ? sql.size() : end;
            plain += u' ';
            continue;
        }
        if (quote == sql[i])
            quote = QChar();
        else if (quote.isNull() && QStringView(u"'\"`[").contains(sql[i]))
            quote = sql[i] == u'[' ? QChar(u']') : sql[i];
        plain += sql[i];
    }
    return plain.simplified();
}

// Everything that a schema file makes, in one text each: the tables with their columns, indexes, triggers.
QSet<QString> schemaOf(SQLite::Database &connection) {
    SQLite::Statement query(connection, "SELECT type || ' ' || name || ': ' || IFNULL(sql, '') "
                                        "FROM sqlite_master");
    QSet<QString> schema;
    while (query.executeStep())
        schema.insert(plainSql(textOf(query.getColumn(0))));
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

QString LearnerFile::temporaryPath() const {
    return QFileInfo(_storePath).path() + QStringLiteral("/murvo-copy-XXXXXX");
}

// Another Murvo may be at work in the same folder.
void LearnerFile::removeLeftovers() const {
    QDir beside(QFileInfo(_storePath).path());
    const QDateTime longAgo = QDateTime::currentDateTime().addSecs(-leftoverSeconds);
    for (const QFileInfo &file : beside.entryInfoList({QStringLiteral("murvo-copy-*")}, QDir::Files)) {
        if (file.lastModified() < longAgo)
            beside.remove(file.fileName());
    }
}

// A connection of its own: nobody who plays a film waits for it.
std::unique_ptr<QTemporaryFile> LearnerFile::copy() const {
    auto file = std::make_unique<QTemporaryFile>(temporaryPath());
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

QString LearnerFile::replace(const QString &path, const Taking &taking, const QString &kept) const {
    check(path);
    QString backup;
    try {
        { Database brought(path, _steps); } // to the newest schema
        SQLite::Database source(path.toStdString(), SQLite::OPEN_READWRITE, busyMs);
        taking.adapt(source);
        taking.prepare();
        _database.takeAllOf(source, [&] { backup = backUp(); });
    } catch (const std::exception &failure) {
        if (!backup.isEmpty())
            QFile::remove(backup);
        if (const auto *ofStore = dynamic_cast<const SQLite::Exception *>(&failure))
            Database::throwIfFull(*ofStore);
        throw;
    }
    removeOldBackups(kept);
    return backup;
}

QString LearnerFile::replaceByCopyOf(const QString &path, const Taking &taking) const {
    QFile source(path);
    if (!source.open(QIODevice::ReadOnly))
        throw std::runtime_error("the learner's file cannot be read");
    QTemporaryFile copied(temporaryPath());
    if (!copied.open())
        throw DiskFull();
    constexpr qint64 pieceBytes = 1 << 20;
    for (QByteArray piece = source.read(pieceBytes); !piece.isEmpty(); piece = source.read(pieceBytes)) {
        if (copied.write(piece) != piece.size())
            throw DiskFull();
    }
    if (source.error() != QFileDevice::NoError)
        throw std::runtime_error("the learner's file cannot be read");
    if (!copied.flush())
        throw DiskFull();
    copied.close();
    return replace(copied.fileName(), taking, path);
}

// The file may be anybody's: it is only read, none of its triggers and functions run, and it must be, but for
// comments, what this program would have made.
void LearnerFile::check(const QString &path) const {
    try {
        SQLite::Database file(path.toStdString(), SQLite::OPEN_READWRITE, busyMs);
        checkContent(file);
    } catch (const SQLite::Exception &failure) {
        Database::throwIfFull(failure);
        const int code = failure.getErrorCode() & 0xff;
        if (code == SQLITE_BUSY || code == SQLITE_LOCKED || code == SQLITE_NOMEM)
            throw;
        QFile file(path);
        const bool isDatabase = file.open(QIODevice::ReadOnly) && file.read(16).startsWith("SQLite format 3");
        throw LearnerFileError(isDatabase ? Reason::Damaged : Reason::NotOurs);
    }
}

void LearnerFile::checkContent(SQLite::Database &file) const {
    file.exec("PRAGMA trusted_schema = OFF");
    file.exec("PRAGMA cell_size_check = ON");
    const int number = file.execAndGet("PRAGMA user_version").getInt();
    if (number > _steps.last().number && file.tableExists("films"))
        throw LearnerFileError(Reason::Newer);
    // In another encoding it could be taken, but never again be used together with the store's temporary
    // tables.
    if (number < 1 || schemaOf(file) != schemaBy(_steps, number) ||
        file.execAndGet("PRAGMA encoding").getString() != "UTF-8")
        throw LearnerFileError(Reason::NotOurs);
    if (file.execAndGet("PRAGMA integrity_check(1)").getString() != "ok" ||
        hasRows(file, "PRAGMA foreign_key_check"))
        throw LearnerFileError(Reason::Damaged);
    // The store takes pages of its own size only.
    file.exec("PRAGMA journal_mode = DELETE");
    const int pageSize = _database.run(
        [](SQLite::Database &connection) { return connection.execAndGet("PRAGMA page_size").getInt(); });
    if (file.execAndGet("PRAGMA page_size").getInt() == pageSize)
        return;
    file.exec("PRAGMA page_size = " + std::to_string(pageSize));
    file.exec("VACUUM");
}

// It has its name once it is whole and on the disk.
QString LearnerFile::backUp() const {
    const QDir beside(QFileInfo(_storePath).path());
    const auto whole = copy();
    if (::fsync(whole->handle()) != 0)
        throw DiskFull();
    const QString now = QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMdd-HHmmss-zzz"));
    QString backup = beside.filePath(QStringLiteral("murvo-before-%1.sqlite").arg(now));
    if (!whole->rename(backup))
        throw std::runtime_error("the backup could not be named");
    whole->setAutoRemove(false);
    return backup;
}

void LearnerFile::removeOldBackups(const QString &kept) const {
    const QDir beside(QFileInfo(_storePath).path());
    QStringList backups =
        beside.entryList({QStringLiteral("murvo-before-*.sqlite")}, QDir::Files, QDir::Name);
    backups.removeOne(QFileInfo(kept).fileName());
    while (backups.size() > lastBackupsKept + 1)
        QFile::remove(beside.filePath(backups.takeAt(1))); // the first one stays
}

} // namespace murvo::service
