// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/FilmRoutes.h"

#include "ChangeCounts.h"
#include "Http/LongPoll.h"
#include "Http/LookupForm.h"
#include "Http/RequestedFilm.h"
#include "Http/Router.h"
#include "Http/SubtitleJson.h"
#include "Http/TimingJson.h"
#include "Languages.h"
#include "Sources/FilmProbe.h"
#include "Sources/InsideSubtitles.h"
#include "Sources/SidecarName.h"
#include "Sources/SubtitleLookup.h"
#include "Store/ChoiceTable.h"
#include "Store/FilmTable.h"
#include "Store/SettingsTable.h"
#include "Store/TimingTable.h"
#include "Subtitles/FilmLines.h"
#include "Subtitles/Findings.h"
#include "Subtitles/Gunzip.h"

#include <QJsonArray>

#include <algorithm>
#include <array>
#include <utility>

namespace murvo::service {

namespace {

constexpr qsizetype longestFileName = 255;

Response lookUp(const Request &request, const FilmRouteParts &parts) {
    const auto form = readLookupForm(request.body);
    if (!form)
        throw RouteError(400, QStringLiteral("badLookup"),
                         QStringLiteral("The lookup must begin with fileSize and movieHash."));
    const LookupAnswer answer = parts.lookup.lookUp(form->movieHash, form->sizeBytes, form->fileName);
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

QJsonValue trackOrNull(const std::optional<ReadTrack> &track, TimingTable &timings) {
    if (!track)
        return QJsonValue::Null;
    QJsonObject object = subtitleJson(track->subtitle);
    object.insert(QStringLiteral("timing"), timingJson(timings.timing(track->subtitle.id)));
    object.insert(QStringLiteral("cues"), cuesJson(track->reading.cues));
    return object;
}

// A file that is in the store, a track that is on its way there, or one that has its reason for being
// neither.
bool isWorthTelling(const Subtitle &subtitle) {
    return subtitle.stored() || !subtitle.problem.isEmpty() || subtitle.source == SubtitleSource::Inside;
}

Response lines(const Request &request, const FilmRouteParts &parts) {
    const Film film = requestedFilm(request, parts.films);
    const qint32 revision = parts.changes.count(film.id); // before what it counts is looked at
    const QString native = parts.settings.nativeLanguage();
    const FilmLinesAnswer answer = parts.lines.read(film, native);
    QJsonArray tracks;
    for (const Subtitle &subtitle : answer.subtitles) {
        if (isWorthTelling(subtitle))
            tracks.append(subtitleJson(subtitle));
    }
    return jsonResponse({{QStringLiteral("videoId"), film.id},
                         {QStringLiteral("fileName"), film.name},
                         {QStringLiteral("nativeLanguage"), native},
                         {QStringLiteral("revision"), revision},
                         {QStringLiteral("learned"), trackOrNull(answer.learned, parts.timings)},
                         {QStringLiteral("native"), trackOrNull(answer.native, parts.timings)},
                         {QStringLiteral("tracks"), tracks}});
}

Response changes(const Request &request, const FilmRouteParts &parts) {
    const Film film = requestedFilm(request, parts.films);
    const qint32 revision = countAfter(request, parts.changes, film.id);
    const InsideProgress inside = parts.inside.progress(film.id);
    return jsonResponse({{QStringLiteral("videoId"), film.id},
                         {QStringLiteral("revision"), revision},
                         {QStringLiteral("isReadingFilm"), inside.isRunning},
                         {QStringLiteral("readPercent"), inside.percent}});
}

// Absent or null, 0, or a subtitle of the film.
void checkChoice(const QJsonValue &value, const QList<Subtitle> &subtitles) {
    if (value.isUndefined() || value.isNull())
        return;
    const int id = value.toInt(-1);
    const bool isOfFilm = std::any_of(subtitles.begin(), subtitles.end(),
                                      [id](const Subtitle &subtitle) { return subtitle.id == id; });
    if (id != 0 && !isOfFilm)
        throw RouteError(400, QStringLiteral("badChoice"),
                         QStringLiteral("A line is null, 0 or the number of a subtitle of this film."));
}

QJsonValue choiceJson(LineChoice choice) {
    return choice ? QJsonValue(*choice) : QJsonValue(QJsonValue::Null);
}

// Everything is checked before anything is changed. What is absent stays; null: the best is found; 0: none.
Response choose(const Request &request, const FilmRouteParts &parts) {
    const Film film = requestedFilm(request, parts.films);
    const QJsonObject body = jsonBody(request);
    const QList<Subtitle> subtitles = parts.subtitles.ofFilm(film.id);
    const std::array lines{std::pair(QStringLiteral("learned"), Line::Learned),
                           std::pair(QStringLiteral("native"), Line::Native)};
    for (const auto &[name, line] : lines)
        checkChoice(body.value(name), subtitles);
    QJsonObject chosen;
    for (const auto &[name, line] : lines) {
        const QJsonValue value = body.value(name);
        if (!value.isUndefined())
            parts.choices.choose(film.id, line, value.isNull() ? LineChoice() : LineChoice(value.toInt()));
        chosen.insert(name, choiceJson(parts.choices.choice(film.id, line)));
    }
    parts.changes.announce(film.id);
    return jsonResponse(chosen);
}

// A bare name that can be shown, whatever the client sent.
QString checkedFileName(const Request &request) {
    QString name = request.parameters.value(QStringLiteral("fileName")).simplified();
    const auto letters = name.toUcs4();
    const bool isBare = !name.isEmpty() && name.size() <= longestFileName && name.isValidUtf16() &&
                        std::none_of(letters.begin(), letters.end(), [](char32_t letter) {
                            return letter == U'/' || QChar::category(letter) == QChar::Other_Control;
                        });
    if (!isBare)
        throw RouteError(400, QStringLiteral("badParameter"),
                         QStringLiteral("The parameter \"fileName\" must be the name of a file."));
    return name;
}

// What cannot be read is refused, and leaves nothing behind.
Response addSubtitle(const Request &request, const FilmRouteParts &parts) {
    const Film film = requestedFilm(request, parts.films);
    Subtitle described;
    described.source = SubtitleSource::Added;
    described.fileName = described.place = checkedFileName(request);
    if (request.body.size() > largestSubtitleBytes)
        throw RouteError(413, QStringLiteral("tooLarge"),
                         QStringLiteral("The file is too large for a subtitle."));
    const auto content = isGzip(request.body) ? gunzip(request.body, largestSubtitleBytes) : request.body;
    const CueProblem problem = content ? readCues(*content, {}).problem : CueProblem::UnknownFormat;
    if (problem != CueProblem::None) {
        const QJsonValue error = problemJson(codeOf(problem));
        throw RouteError(422, codeOf(problem),
                         described.fileName + QLatin1String(": ") +
                             error[QLatin1String("message")].toString());
    }
    const SidecarName told =
        readSidecarName(film.name, described.fileName).value_or(readSubtitleName(described.fileName));
    takeName(told, described);
    const Subtitle subtitle = parts.subtitles.findOrAdd(film.id, {described}).value(0);
    std::ignore = parts.lines.store(subtitle, *content);
    parts.changes.announce(film.id);
    return jsonResponse(subtitleJson(parts.subtitles.find(subtitle.id).value_or(subtitle)));
}

Response audioTracks(const Request &request, const FilmRouteParts &parts) {
    const Film film = requestedFilm(request, parts.films);
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
    const auto add = [&](const char *method, const char *path, auto answer) {
        router.add(method, QLatin1String("Api/MovieFile/") + QLatin1String(path),
                   [parts, answer](const Request &request) { return answer(request, parts); });
    };
    add("POST", "GetSubtitlesToDownload", lookUp);
    add("GET", "Lines", lines);
    add("GET", "Changes", changes);
    add("PUT", "Choice", choose);
    add("POST", "AddSubtitle", addSubtitle);
    add("GET", "AudioTracks", audioTracks);
}

} // namespace murvo::service
