// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/WatchingRoutes.h"

#include "Http/RequestedFilm.h"
#include "Http/Router.h"
#include "Store/WatchingTable.h"

#include <QDateTime>

#include <limits>

namespace murvo::service {

namespace {

RouteError badSetting(const char *name, const char *rule) {
    return {400, QStringLiteral("badSetting"),
            QStringLiteral("\"%1\" must be %2.").arg(QLatin1String(name), QLatin1String(rule))};
}

qint64 wholeNumber(const QJsonObject &body, const char *name, qint64 least, qint64 most, const char *rule) {
    const qint64 number = body.value(QLatin1String(name)).toInteger(least - 1);
    if (number < least || number > most)
        throw badSetting(name, rule);
    return number;
}

qint64 timeMs(const QJsonObject &body, const char *name) {
    return wholeNumber(body, name, 0, Watching::longestMs, "whole milliseconds of a film");
}

std::optional<qint32> trackId(const QJsonObject &body, const char *name) {
    using Limits = std::numeric_limits<qint32>;
    if (body.value(QLatin1String(name)).isNull())
        return std::nullopt;
    return static_cast<qint32>(
        wholeNumber(body, name, Limits::min(), Limits::max(), "the number of a track or null"));
}

void takeFields(const QJsonObject &body, Watching &watching) {
    const auto has = [&body](const char *name) { return body.contains(QLatin1String(name)); };
    if (has("durationMs"))
        watching.durationMs = timeMs(body, "durationMs");
    if (has("speedPercent"))
        watching.speedPercent =
            static_cast<int>(wholeNumber(body, "speedPercent", Watching::slowestPercent,
                                         Watching::fastestPercent, "a whole number from 25 to 400"));
    if (has("audioTrackId"))
        watching.audioTrackId = trackId(body, "audioTrackId");
    if (has("isFinished")) {
        const QJsonValue isFinished = body.value(QLatin1String("isFinished"));
        if (!isFinished.isBool())
            throw badSetting("isFinished", "true or false");
        watching.isFinished = isFinished.toBool();
    }
    if (has("positionMs")) {
        watching.positionMs = timeMs(body, "positionMs");
        watching.watchedAtMs = QDateTime::currentMSecsSinceEpoch();
    }
}

Response watchingResponse(qint32 filmId, const Watching &watching) {
    return jsonResponse(
        {{QStringLiteral("videoId"), filmId},
         {QStringLiteral("positionMs"), watching.positionMs},
         {QStringLiteral("durationMs"), watching.durationMs},
         {QStringLiteral("speedPercent"), watching.speedPercent},
         {QStringLiteral("audioTrackId"),
          watching.audioTrackId ? QJsonValue(*watching.audioTrackId) : QJsonValue(QJsonValue::Null)},
         {QStringLiteral("isFinished"), watching.isFinished},
         {QStringLiteral("watchedAtMs"),
          watching.watchedAtMs ? QJsonValue(*watching.watchedAtMs) : QJsonValue(QJsonValue::Null)}});
}

} // namespace

void addWatchingRoutes(Router &router, FilmTable &films, WatchingTable &watching) {
    const QString path = QStringLiteral("Api/MovieFile/Watching");
    router.add("GET", path, [&films, &watching](const Request &request) {
        const qint32 filmId = requestedFilm(request, films).id;
        return watchingResponse(filmId, watching.of(filmId));
    });
    router.add("PUT", path, [&films, &watching](const Request &request) {
        const qint32 filmId = requestedFilm(request, films).id;
        const QJsonObject body = jsonBody(request);
        return watchingResponse(
            filmId, watching.update(filmId, [&body](Watching &changed) { takeFields(body, changed); }));
    });
}

} // namespace murvo::service
