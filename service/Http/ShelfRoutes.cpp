// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/ShelfRoutes.h"

#include "Export/FilmStills.h"
#include "FilmHandover.h"
#include "Http/RequestedFilm.h"
#include "Http/Router.h"
#include "Sources/FilmFile.h"
#include "Store/WatchingTable.h"
#include "Vocabulary/FilmWords.h"

#include <QJsonArray>

#include <algorithm>
#include <stdexcept>

namespace murvo::service {

namespace {

constexpr qint32 usualFilms = 24;
constexpr qint32 mostFilms = 100;

QJsonObject filmJson(const WatchedFilm &each, const WordShare &share) {
    return {{QStringLiteral("videoId"), each.filmId},
            {QStringLiteral("fileName"), each.name},
            {QStringLiteral("positionMs"), each.watching.positionMs},
            {QStringLiteral("durationMs"), each.watching.durationMs},
            {QStringLiteral("isFinished"), each.watching.isFinished},
            {QStringLiteral("watchedAtMs"), each.watching.watchedAtMs.value_or(0)},
            {QStringLiteral("isThere"), liesThere(each.path, each.fileSizeBytes)},
            {QStringLiteral("isAddress"), each.path.isEmpty()},
            {QStringLiteral("runningWords"), share.running},
            {QStringLiteral("knownPercent"), share.percent() ? QJsonValue(*share.percent()) : QJsonValue()},
            {QStringLiteral("savedWords"), each.savedWords}};
}

Response list(const Request &request, const ShelfRouteParts &parts) {
    const auto number = [&request](const QString &name, qint32 smallest, qint32 otherwise) {
        return request.parameters.contains(name) ? request.wholeNumber(name, smallest) : otherwise;
    };
    const qint32 offset = number(QStringLiteral("offset"), 0, 0);
    const qint32 count = std::min(number(QStringLiteral("count"), 1, usualFilms), mostFilms);
    const WatchedPage page = parts.watching.list(offset, count);
    QList<qint32> ids;
    for (const WatchedFilm &each : page.films)
        ids.append(each.filmId);
    const QList<WordShare> shares = parts.words.shares(ids);
    QJsonArray films;
    for (qsizetype i = 0; i < ids.size(); ++i)
        films.append(filmJson(page.films[i], shares[i]));
    return jsonResponse({{QStringLiteral("total"), page.total}, {QStringLiteral("films"), films}});
}

Response numbered(qint32 filmId) {
    return jsonResponse({{QStringLiteral("videoId"), filmId}});
}

Response still(const Request &request, const ShelfRouteParts &parts) {
    return pictureResponse(parts.stills.still(requestedFilm(request, parts.films)));
}

Response takeOff(const Request &request, const ShelfRouteParts &parts) {
    const qint32 filmId = requestedFilm(request, parts.films).id;
    parts.watching.takeOff(filmId);
    return numbered(filmId);
}

Response open(const Request &request, const ShelfRouteParts &parts) {
    const Film film = filmNumbered(jsonBody(request).value(QLatin1String("videoId")).toInt(), parts.films);
    if (!liesThere(film.path, film.sizeBytes))
        throw RouteError(404, QStringLiteral("filmMoved"),
                         QStringLiteral("The film no longer lies where it did."));
    if (!parts.handover.hand(film.path))
        throw std::runtime_error("the program does not take the film");
    return numbered(film.id);
}

} // namespace

void addShelfRoutes(Router &router, const ShelfRouteParts &parts) {
    const auto add = [&](const char *method, const char *path, auto answer) {
        router.add(method, QLatin1String("Api/Films") + QLatin1String(path),
                   [parts, answer](const Request &request) { return answer(request, parts); });
    };
    add("GET", "", list);
    add("DELETE", "", takeOff);
    add("GET", "/Still", still);
    add("POST", "/Open", open);
}

} // namespace murvo::service
