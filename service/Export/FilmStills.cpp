// SPDX-License-Identifier: GPL-3.0-or-later
#include "Export/FilmStills.h"

#include "Export/FilmClips.h"
#include "Log.h"
#include "Sources/FilmFile.h"
#include "Store/FilmTable.h"
#include "Store/StillTable.h"
#include "Store/WatchingTable.h"

#include <QFileInfo>

#include <cmath>

namespace murvo::service {

namespace {

// The picture is that of the last lines that were seen all the same.
constexpr qint64 nearMs = 1000;
// It may have failed for a slow disk only.
constexpr std::chrono::minutes untilNextTry{10};

bool isOf(const std::optional<Still> &still, qint64 positionMs) {
    return still && std::abs(still->positionMs - positionMs) <= nearMs;
}

} // namespace

QByteArray FilmStills::still(const Film &film) {
    const Watching watching = _watching.of(film.id);
    if (!watching.watchedAtMs)
        return {};
    const qint64 positionMs = watching.positionMs;
    if (const auto jpeg = known(film, positionMs))
        return *jpeg;
    const std::lock_guard lock(_making);
    if (const auto jpeg = known(film, positionMs)) // somebody else may have tried meanwhile
        return *jpeg;
    QByteArray made = FilmClips(film.path, _isEnding).lightPicture(positionMs);
    if (made.isEmpty()) {
        remember(film, positionMs);
        return known(film, positionMs).value_or(QByteArray());
    }
    try {
        _stills.keep(film.id, {positionMs, made});
    } catch (const std::exception &failure) { // as of a full disk; the picture is there all the same
        qCWarning(serviceLog) << "The picture of film" << film.id << "could not be kept:" << failure.what();
    }
    return made;
}

std::optional<QByteArray> FilmStills::known(const Film &film, qint64 positionMs) {
    const auto kept = _stills.of(film.id);
    if (!isOf(kept, positionMs) && !_isEnding && liesThere(film.path, film.sizeBytes) &&
        !hasMissed(film, positionMs))
        return std::nullopt;
    return kept ? kept->jpeg : QByteArray();
}

bool FilmStills::hasMissed(const Film &film, qint64 positionMs) {
    const std::lock_guard lock(_mutex);
    const auto miss = _misses.constFind(film.id);
    return miss != _misses.constEnd() && std::abs(miss->positionMs - positionMs) <= nearMs &&
           miss->path == film.path && miss->fileChanged == QFileInfo(film.path).lastModified() &&
           std::chrono::steady_clock::now() - miss->at < untilNextTry;
}

void FilmStills::remember(const Film &film, qint64 positionMs) {
    const Miss miss{positionMs, film.path, QFileInfo(film.path).lastModified(),
                    std::chrono::steady_clock::now()};
    const std::lock_guard lock(_mutex);
    _misses.insert(film.id, miss);
}

} // namespace murvo::service
