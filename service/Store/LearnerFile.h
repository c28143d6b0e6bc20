// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/Database.h"

#include <QString>
#include <QTemporaryFile>

#include <functional>
#include <memory>
#include <stdexcept>

namespace murvo::service {

/// Why a file cannot take the place of the store.
class LearnerFileError : public std::runtime_error {
  public:
    enum class Reason {
        NotOurs, ///< another program's, or no database at all
        Newer,   ///< of a newer version of this program
        Damaged
    };

    explicit LearnerFileError(Reason reason)
        : std::runtime_error("the learner's file cannot be used")
        , _reason(reason) {}

    [[nodiscard]] Reason reason() const { return _reason; }

  private:
    Reason _reason;
};

/// All that the learner has made, as one file to be kept elsewhere and brought back.
///
/// Any thread; borrows the database. It makes its temporary files and backups in the folder of the store,
/// which is the learner's alone. It knows no table.
class LearnerFile {
  public:
    /// The steps by which the database was opened, and the path of its file.
    LearnerFile(Database &database, QString storePath, QList<Database::SchemaStep> steps)
        : _database(database)
        , _storePath(std::move(storePath))
        , _steps(std::move(steps)) {}

    /// A copy of the store as it is now, opened at its beginning; it goes when the object does. Others may
    /// write meanwhile. Throws DiskFull, SQLite::Exception.
    [[nodiscard]] std::unique_ptr<QTemporaryFile> copy() const;

    /// Who else is concerned by another store in place of this one. Either may throw, and nothing is taken
    /// then.
    struct Taking {
        std::function<void(SQLite::Database &)>
            adapt;                     ///< changes what of a good file is not to be taken as it is
        std::function<void()> prepare; ///< called just before it is taken
    };

    /// Takes the file in place of the store, brought to the newest schema; the store as it was is kept beside
    /// it, the last ten times and the first. The file at path is changed. Throws LearnerFileError,
    /// DiskFull, SQLite::Exception: then the store is as it was. Returns the path of the backup.
    [[nodiscard]] QString replaceBy(const QString &path, const Taking &taking) const {
        return replace(path, taking, {});
    }

    /// The same with a copy of the file at path, which stays as it is, also when it is a backup. Throws also
    /// std::runtime_error where it cannot be read.
    [[nodiscard]] QString replaceByCopyOf(const QString &path, const Taking &taking) const;

    /// Where others may keep temporary files, with "XXXXXX" for what tells them apart.
    [[nodiscard]] QString temporaryPath() const;

    /// Temporary files ("murvo-copy-...") of a process that was killed are removed.
    void removeLeftovers() const;

  private:
    [[nodiscard]] QString replace(const QString &path, const Taking &taking, const QString &kept) const;
    void check(const QString &path) const;
    void checkContent(SQLite::Database &file) const;
    [[nodiscard]] QString backUp() const;
    void removeOldBackups(const QString &kept) const;

    Database &_database;
    QString _storePath;
    QList<Database::SchemaStep> _steps;
};

} // namespace murvo::service
