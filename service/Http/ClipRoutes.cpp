// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/ClipRoutes.h"

#include "Export/FilmClips.h"
#include "Http/RequestedFilm.h"
#include "Http/Router.h"
#include "Sources/FilmFile.h"

namespace murvo::service {

namespace {

// Voices begin a little before their line shows and end after it.
constexpr qint64 airBeforeMs = 150;
constexpr qint64 airBehindMs = 250;

struct LinePlace {
    Film film;
    qint64 startMs = 0;
    qint64 endMs = 0;
};

LinePlace requestedPlace(const Request &request, FilmTable &films) {
    LinePlace place;
    place.startMs = request.wholeNumber(QStringLiteral("startMs"), 0);
    place.endMs = request.wholeNumber(QStringLiteral("endMs"), 0);
    if (place.endMs <= place.startMs)
        throw RouteError(400, QStringLiteral("badParameter"),
                         QStringLiteral("\"endMs\" must lie behind \"startMs\"."));
    place.film = requestedFilm(request, films);
    return place;
}

Response sound(const LinePlace &line, const std::atomic<bool> &isEnding) {
    QByteArray sound;
    if (liesThere(line.film.path, line.film.sizeBytes))
        sound = FilmClips(line.film.path, isEnding)
                    .sound(line.startMs - airBeforeMs, line.endMs + airBehindMs);
    if (sound.isEmpty())
        throw RouteError(404, QStringLiteral("noSound"),
                         QStringLiteral("The film has no sound there, or no longer lies where it did."));
    return {200, QByteArrayLiteral("audio/mpeg"), sound};
}

Response picture(const LinePlace &line, const std::atomic<bool> &isEnding) {
    QByteArray picture;
    if (liesThere(line.film.path, line.film.sizeBytes))
        picture = FilmClips(line.film.path, isEnding).picture((line.startMs + line.endMs) / 2);
    return pictureResponse(picture);
}

} // namespace

void addClipRoutes(Router &router, FilmTable &films, const std::atomic<bool> &isEnding) {
    const auto add = [&](const char *path, auto answer) {
        router.add("GET", QLatin1String("Api/Lines/") + QLatin1String(path),
                   [&films, &isEnding, answer](const Request &request) {
                       return answer(requestedPlace(request, films), isEnding);
                   });
    };
    add("Sound", sound);
    add("Picture", picture);
}

} // namespace murvo::service
