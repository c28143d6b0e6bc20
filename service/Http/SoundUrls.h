// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

namespace murvo::service {

class FilmTable;
struct Request;

/// Addresses of what is heard at lines of films, for the command PlayAudio. Made for one request: it
/// remembers which films lie there. Each is signed, so that one that was logged opens no other line. One
/// thread; may throw SQLite::Exception.
class SoundUrls {
  public:
    SoundUrls(const Request &request, FilmTable &films);

    /// Absolute, below the token that the player may write into its log. Empty for no time or no film, and
    /// when the film does not lie there now.
    [[nodiscard]] QString of(qint32 filmId, qint64 startMs, qint64 endMs);

    /// What only the service can write behind the address of that line.
    [[nodiscard]] static QString signature(const QByteArray &key, qint32 filmId, qint64 startMs,
                                           qint64 endMs);

  private:
    [[nodiscard]] bool isThere(qint32 filmId);

    QString _baseUrl;
    QByteArray _key;
    FilmTable &_films;
    QHash<qint32, bool> _areThere;
};

} // namespace murvo::service
