// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/FilmRoutes.h"

#include "Http/LookupForm.h"
#include "Http/Router.h"
#include "Http/SubtitleJson.h"
#include "Languages.h"
#include "Sources/FilmProbe.h"
#include "Sources/SubtitleLookup.h"
#include "Store/FilmTable.h"
#include "Store/SettingsTable.h"
#include "Subtitles/FilmLines.h"

#include <QJsonArray>

namespace murvo::service {

namespace {

Film requestedFilm(const Request &request, FilmTable &films) {
    const auto film = films.find(request.positiveId(QStringLiteral("videoId")));
    if (!film)
        throw RouteError(404, QStringLiteral("unknownFilm"), QStringLiteral("No film has this number."));
    return *film;
}

Response lookUp(const Request &request, SubtitleLookup &lookup) {
    const auto form = readLookupForm(request.body);
    if (!form)
        throw RouteError(400, QStringLiteral("badLookup"),
                         QStringLiteral("The lookup must begin with fileSize and movieHash."));
    const LookupAnswer answer = lookup.lookUp(form->movieHash, form->sizeBytes, form->fileName);
    QJsonArray offers;
    for (const SubtitleOffer &offer : answer.offers) {
        const QString url = request.downloadBaseUrl +
                            QStringLiteral("Api/Subtitles/File?subtitleId=%1").arg(offer.subtitle.id);
        offers.append(QJsonObject{{QStringLiteral("downloadUrl"), url},
                                  {QStringLiteral("mustBeDownloaded"), offer.mustBeDownloaded},
                                  {QStringLiteral("subFileName"), offer.subtitle.fileName},
                                  {QStringLiteral("subtitleId"), offer.subtitle.id}});
    }
    return jsonResponse(
        {{QStringLiteral("videoId"), answer.film.id}, {QStringLiteral("subsToDownload"), offers}});
}

QJsonValue trackOrNull(const std::optional<ReadTrack> &track) {
    if (!track)
        return QJsonValue::Null;
    QJsonObject object = subtitleJson(track->subtitle);
    object.insert(QStringLiteral("cues"), cuesJson(track->reading.cues));
    return object;
}

Response lines(const Request &request, const FilmRouteParts &parts) {
    const Film film = requestedFilm(request, parts.films);
    const QString native = parts.settings.nativeLanguage();
    const FilmLinesAnswer answer = parts.lines.read(film, native);
    QJsonArray unusable;
    for (const ReadTrack &track : answer.unusable) {
        QJsonObject object = subtitleJson(track.subtitle);
        object.insert(QStringLiteral("error"), problemJson(track.reading.problem));
        unusable.append(object);
    }
    return jsonResponse({{QStringLiteral("videoId"), film.id},
                         {QStringLiteral("fileName"), film.name},
                         {QStringLiteral("nativeLanguage"), native},
                         {QStringLiteral("learned"), trackOrNull(answer.learned)},
                         {QStringLiteral("native"), trackOrNull(answer.native)},
                         {QStringLiteral("unusable"), unusable}});
}

Response tracks(const Request &request, const FilmRouteParts &parts) {
    const Film film = requestedFilm(request, parts.films);
    QJsonArray list;
    for (const Subtitle &subtitle : parts.subtitles.ofFilm(film.id))
        list.append(subtitleJson(subtitle));
    return jsonResponse({{QStringLiteral("videoId"), film.id}, {QStringLiteral("tracks"), list}});
}

Response audioTracks(const Request &request, FilmTable &films) {
    const Film film = requestedFilm(request, films);
    const auto facts = probeFilm(film.path);
    QJsonArray list;
    for (const AudioTrack &track : facts ? facts->audioTracks : QList<AudioTrack>{}) {
        const Language *language = findLanguage(track.language);
        list.append(QJsonObject{{QStringLiteral("trackId"), track.trackId},
                                {QStringLiteral("language"), track.language},
                                {QStringLiteral("languageName"),
                                 language != nullptr ? language->nativeName.toString() : QString()},
                                {QStringLiteral("title"), track.title},
                                {QStringLiteral("isDefault"), track.isDefault}});
    }
    return jsonResponse({{QStringLiteral("videoId"), film.id},
                         {QStringLiteral("filmRead"), facts.has_value()},
                         {QStringLiteral("audioTracks"), list}});
}

} // namespace

void addFilmRoutes(Router &router, const FilmRouteParts &parts) {
    router.add("POST", QStringLiteral("Api/MovieFile/GetSubtitlesToDownload"),
               [parts](const Request &request) { return lookUp(request, parts.lookup); });
    router.add("GET", QStringLiteral("Api/MovieFile/Lines"),
               [parts](const Request &request) { return lines(request, parts); });
    router.add("GET", QStringLiteral("Api/MovieFile/Tracks"),
               [parts](const Request &request) { return tracks(request, parts); });
    router.add("GET", QStringLiteral("Api/MovieFile/AudioTracks"),
               [parts](const Request &request) { return audioTracks(request, parts.films); });
}

} // namespace murvo::service
