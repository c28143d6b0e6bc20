// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/SoundUrls.h"

#include "Http/Message.h"
#include "Sources/FilmFile.h"
#include "Store/FilmTable.h"

#include <QMessageAuthenticationCode>

namespace murvo::service {

SoundUrls::SoundUrls(const Request &request, FilmTable &films)
    : _baseUrl(request.downloadBaseUrl)
    , _key(request.downloadKey)
    , _films(films) {}

QString SoundUrls::of(qint32 filmId, qint64 startMs, qint64 endMs) {
    if (endMs <= startMs || !isThere(filmId))
        return {};
    return _baseUrl + QStringLiteral("Api/Lines/Sound?videoId=%1&startMs=%2&endMs=%3&signature=%4")
                          .arg(QString::number(filmId), QString::number(startMs), QString::number(endMs),
                               signature(_key, filmId, startMs, endMs));
}

QString SoundUrls::signature(const QByteArray &key, qint32 filmId, qint64 startMs, qint64 endMs) {
    const QString line = QStringLiteral("%1 %2 %3").arg(filmId).arg(startMs).arg(endMs);
    return QString::fromLatin1(
        QMessageAuthenticationCode::hash(line.toLatin1(), key, QCryptographicHash::Sha256).toHex());
}

bool SoundUrls::isThere(qint32 filmId) {
    if (filmId == 0)
        return false;
    const auto known = _areThere.constFind(filmId);
    if (known != _areThere.constEnd())
        return *known;
    const auto film = _films.find(filmId);
    return *_areThere.insert(filmId, film && liesThere(film->path, film->sizeBytes));
}

} // namespace murvo::service
