// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace murvo::service {

class Database;

/// A subtitle file of a film, without its content.
struct Subtitle {
    qint32 id = 0;
    qint32 filmId = 0;
    QString fileName;
    QString language; ///< ISO 639-2/T, empty while unknown
    bool forced = false;
    bool hearingImpaired = false;
    QByteArray contentSha256; ///< empty until the store holds the content

    [[nodiscard]] bool stored() const { return !contentSha256.isEmpty(); }
};

/// The table of subtitle files. Any thread; borrows the database. Every call may throw SQLite::Exception.
class SubtitleTable {
  public:
    explicit SubtitleTable(Database &database)
        : _database(database) {}

    /// The row of that film and file name, made if it is new; id, filmId and content of the argument are
    /// ignored.
    [[nodiscard]] Subtitle findOrAdd(qint32 filmId, const Subtitle &described);

    [[nodiscard]] std::optional<Subtitle> find(qint32 subtitleId);

    /// All subtitles of a film, oldest first.
    [[nodiscard]] QList<Subtitle> ofFilm(qint32 filmId);

    /// Keeps the file's bytes; false when there is no such subtitle. On the disk when it returns.
    bool storeContent(qint32 subtitleId, const QByteArray &content);

    /// The stored bytes; none when there is no such subtitle or nothing was stored.
    [[nodiscard]] std::optional<QByteArray> content(qint32 subtitleId);

    /// The form in which contents are compared.
    [[nodiscard]] static QByteArray sha256(const QByteArray &content);

  private:
    Database &_database;
};

} // namespace murvo::service
