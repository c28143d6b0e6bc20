// SPDX-License-Identifier: GPL-3.0-or-later
#include "Export/FilmStills.h"

#include "Export/FilmClips.h"
#include "Store/FilmTable.h"
#include "Store/StillTable.h"
#include "Store/WatchingTable.h"

#include <cmath>

namespace murvo::service {

namespace {

// The picture is that of the last lines that were seen all the same.
constexpr qint64 nearMs = 1000;

bool isOf(const std::optional<Still> &still, qint64 positionMs) {
    return still && std::abs(still->positionMs - positionMs) <= nearMs;
}

} // namespace

QByteArray FilmStills::still(const Film &film) {
    const qint64 positionMs = _watching.of(film.id).positionMs;
    if (const auto kept = _stills.of(film.id); isOf(kept, positionMs))
        return kept->jpeg;
    const std::lock_guard lock(_making);
    const auto kept = _stills.of(film.id); // somebody else may have made it meanwhile
    if (isOf(kept, positionMs))
        return kept->jpeg;
    const QByteArray earlier = kept ? kept->jpeg : QByteArray();
    if (_isEnding || film.path.isEmpty())
        return earlier;
    const QByteArray made = FilmClips(film.path, _isEnding).lightPicture(positionMs);
    if (made.isEmpty())
        return earlier;
    _stills.keep(film.id, {positionMs, made});
    return made;
}

} // namespace murvo::service
