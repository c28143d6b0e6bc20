// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

namespace murvo::service {

class Database;

struct Film {
    qint32 id = 0; ///< the "videoId"
    QString name;
    QString path; ///< where it lay last; empty when never told
    bool isHashed = false;
    QString insideRead;   ///< tells the file whose own tracks were read; empty when none was
    qint64 sizeBytes = 0; ///< of its file; 0: not known
};

/// What tells one film from another: its hash and size, or where it lies when it could not be hashed.
struct FilmKey {
    quint64 movieHash = 0;
    quint64 sizeBytes = 0;
    QString path; ///< empty when not known
    QString name;

    [[nodiscard]] bool hashed() const { return movieHash != 0 || sizeBytes != 0; }
    [[nodiscard]] QString identity() const;
};

/// The size (bytes) that an identity tells; 0 when it tells none.
[[nodiscard]] qint64 sizeOfIdentity(const QString &identity);

/// The table of films. Any thread; borrows the database. Every call may throw SQLite::Exception.
class FilmTable {
  public:
    explicit FilmTable(Database &database)
        : _database(database) {}

    /// The film of that key, made if it is new; its name and, where given, its path are brought up to date.
    [[nodiscard]] Film findOrAdd(const FilmKey &key);

    [[nodiscard]] std::optional<Film> find(qint32 filmId);

    /// Notes that the tracks of that file have been read.
    void setInsideRead(qint32 filmId, const QString &file);

  private:
    [[nodiscard]] std::optional<Film> findByIdentity(const QString &identity);

    Database &_database;
};

} // namespace murvo::service
