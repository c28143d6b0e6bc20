// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/SubtitleRoutes.h"

#include "ChangeCounts.h"
#include "Http/Multipart.h"
#include "Http/Router.h"
#include "Http/SubtitleJson.h"
#include "Http/TimingJson.h"
#include "Languages.h"
#include "Sources/Sidecars.h"
#include "Store/FilmTable.h"
#include "Store/SubtitleTable.h"
#include "Store/TimingTable.h"
#include "Subtitles/Charset.h"
#include "Subtitles/FilmLines.h"
#include "Subtitles/Findings.h"
#include "Subtitles/Gunzip.h"
#include "Timing/TrackSync.h"

#include <QJsonArray>

#include <algorithm>

namespace murvo::service {

namespace {

constexpr qsizetype mostParts = 256;
constexpr qsizetype longestSample = 80;
constexpr qsizetype bytesForSample = 262'144;

Subtitle requestedSubtitle(const Request &request, SubtitleTable &subtitles) {
    const auto subtitle = subtitles.find(request.positiveId(QStringLiteral("subtitleId")));
    if (!subtitle)
        throw RouteError(404, QStringLiteral("unknownSubtitle"),
                         QStringLiteral("No subtitle has this number."));
    return *subtitle;
}

// The file as it lies beside the film now, else as it was stored.
Response download(const Request &request, const SubtitleRouteParts &parts) {
    const Subtitle subtitle = requestedSubtitle(request, parts.subtitles);
    const auto film = parts.films.find(subtitle.filmId);
    auto content = film && subtitle.source == SubtitleSource::Beside ? readSidecar(film->path, subtitle.place)
                                                                     : std::nullopt;
    if (!content)
        content = parts.subtitles.content(subtitle.id);
    if (!content)
        throw RouteError(404, QStringLiteral("fileGone"),
                         QStringLiteral("The subtitle file is no longer beside the film."));
    return {200, "application/octet-stream", *content};
}

// An empty text says that the part was stored, any other why not.
QString storePart(const MultipartPart &part, const SubtitleRouteParts &parts) {
    bool isNumber = false;
    const qint32 id = part.name.toInt(&isNumber);
    if (!isNumber || id <= 0)
        return QStringLiteral("badName");
    auto content = isGzip(part.content) ? gunzip(part.content, largestSubtitleBytes) : part.content;
    if (!content)
        return QStringLiteral("badGzip");
    if (content->size() > largestSubtitleBytes)
        return QStringLiteral("tooLarge");
    const auto subtitle = parts.subtitles.find(id);
    return subtitle && parts.lines.store(*subtitle, *content) ? QString() : QStringLiteral("unknownSubtitle");
}

Response upload(const Request &request, const SubtitleRouteParts &parts) {
    const auto boundary = multipartBoundary(request.contentType);
    if (!boundary)
        throw RouteError(400, QStringLiteral("notMultipart"),
                         QStringLiteral("The body must be multipart/form-data with a boundary."));
    int stored = 0;
    QJsonArray refused;
    for (const MultipartPart &part : readMultipart(request.body, *boundary, mostParts)) {
        const QString code = storePart(part, parts);
        if (code.isEmpty())
            ++stored;
        else
            refused.append(QJsonObject{{QStringLiteral("name"), QString::fromUtf8(part.name)},
                                       {QStringLiteral("code"), code}});
    }
    return jsonResponse({{QStringLiteral("stored"), stored}, {QStringLiteral("refused"), refused}});
}

Film filmOf(const Subtitle &subtitle, FilmTable &films) {
    return films.find(subtitle.filmId).value_or(Film{});
}

Subtitle requestedStored(const Request &request, const SubtitleRouteParts &parts) {
    Subtitle subtitle = requestedSubtitle(request, parts.subtitles);
    if (!subtitle.stored())
        throw RouteError(409, QStringLiteral("notStored"),
                         QStringLiteral("This subtitle has not been uploaded yet."));
    return subtitle;
}

Response cues(const Request &request, const SubtitleRouteParts &parts) {
    const Subtitle subtitle = requestedStored(request, parts);
    const ReadTrack track = parts.lines.readOne(filmOf(subtitle, parts.films), subtitle);
    if (track.reading.problem != CueProblem::None) {
        const QString code = codeOf(track.reading.problem);
        throw RouteError(422, code, problemJson(code)[QLatin1String("message")].toString());
    }
    QJsonObject object = subtitleJson(subtitle);
    object.insert(QStringLiteral("timing"), timingJson(parts.timings.timing(subtitle.id)));
    object.insert(QStringLiteral("cues"), cuesJson(track.reading.cues));
    return jsonResponse(object);
}

Response move(const Request &request, const SubtitleRouteParts &parts) {
    const Subtitle subtitle = requestedSubtitle(request, parts.subtitles);
    const Timing timing = timingOf(jsonBody(request));
    parts.timings.setTiming(subtitle.id, timing);
    return jsonResponse(timingJson(timing));
}

Response fitting(const Subtitle &subtitle, const TrackSync &sync) {
    const SyncState state = sync.state(subtitle.id);
    const auto &alignment = state.alignment;
    const char *stage = state.stage == SyncState::Stage::Running ? "running"
                        : state.stage == SyncState::Stage::Done  ? "done"
                                                                 : "none";
    return jsonResponse(
        {{QStringLiteral("stage"), QLatin1String(stage)},
         {QStringLiteral("percent"), state.percent},
         {QStringLiteral("timing"), alignment ? QJsonValue(timingJson(alignment->timing)) : QJsonValue::Null},
         {QStringLiteral("isSure"), alignment && alignment->isSure},
         {QStringLiteral("surePercent"), alignment ? static_cast<int>(alignment->confidence * 100) : 0},
         {QStringLiteral("isAgainstTrack"), state.isAgainstTrack}});
}

Response beginFitting(const Request &request, const SubtitleRouteParts &parts) {
    const Subtitle subtitle = requestedStored(request, parts);
    parts.sync.begin(filmOf(subtitle, parts.films), subtitle);
    return fitting(subtitle, parts.sync);
}

Response endFitting(const Request &request, const SubtitleRouteParts &parts) {
    const Subtitle subtitle = requestedSubtitle(request, parts.subtitles);
    parts.sync.cancel(subtitle.id);
    return fitting(subtitle, parts.sync);
}

// A line that shows what is wrong with the letters: the first with others than ASCII has.
QString sampleOf(const QByteArray &content, const QByteArray &encoding) {
    const auto isPlain = [](const QString &line) {
        return std::all_of(line.begin(), line.end(), [](QChar c) { return c.unicode() < 128; });
    };
    for (const Cue &cue : readCues(content.left(bytesForSample), {}, encoding).cues) {
        const QString text = cue.lines.join(u' ');
        if (!isPlain(text))
            return text.left(longestSample);
    }
    return {};
}

Response encodings(const Request &request, const SubtitleRouteParts &parts) {
    const Subtitle subtitle = requestedStored(request, parts);
    const QByteArray content = parts.subtitles.content(subtitle.id).value_or(QByteArray());
    QJsonArray guesses;
    for (const QByteArray &guess : encodingGuesses(content))
        guesses.append(QJsonObject{{QStringLiteral("encoding"), QString::fromLatin1(guess)},
                                   {QStringLiteral("sample"), sampleOf(content, guess)}});
    return jsonResponse(
        {{QStringLiteral("encoding"), subtitle.encoding}, {QStringLiteral("guesses"), guesses}});
}

Response setEncoding(const Request &request, const SubtitleRouteParts &parts) {
    const Subtitle subtitle = requestedStored(request, parts);
    const QString encoding = jsonBody(request).value(QLatin1String("encoding")).toString();
    const QByteArray content = parts.subtitles.content(subtitle.id).value_or(QByteArray());
    if (!encoding.isEmpty() && !encodingGuesses(content).contains(encoding.toLatin1()))
        throw RouteError(400, QStringLiteral("badEncoding"),
                         QStringLiteral("The encoding must be one of those that were guessed, or empty."));
    parts.lines.setEncoding(subtitle, encoding);
    parts.changes.announce(subtitle.filmId);
    return jsonResponse({{QStringLiteral("encoding"), encoding}});
}

Response language(const Subtitle &subtitle) {
    QJsonArray languages;
    for (const Language &each : knownLanguages())
        languages.append(QJsonObject{{QStringLiteral("code"), each.code},
                                     {QStringLiteral("languageTag"), each.twoLetter},
                                     {QStringLiteral("nativeName"), each.nativeName.toString()}});
    return jsonResponse({{QStringLiteral("language"), subtitle.chosenLanguage},
                         {QStringLiteral("found"), subtitle.foundLanguage()},
                         {QStringLiteral("languages"), languages}});
}

Response setLanguage(const Request &request, const SubtitleRouteParts &parts) {
    const Subtitle subtitle = requestedSubtitle(request, parts.subtitles);
    const QString code = jsonBody(request).value(QLatin1String("language")).toString();
    const Language *known = findLanguage(code);
    if (!code.isEmpty() && (known == nullptr || known->code != code))
        throw RouteError(400, QStringLiteral("badLanguage"),
                         QStringLiteral("The language must be the code of a known one, or empty."));
    parts.subtitles.setLanguage(subtitle.id, code);
    parts.changes.announce(subtitle.filmId);
    return jsonResponse({{QStringLiteral("language"), code}});
}

Response setRemoved(const Request &request, const SubtitleRouteParts &parts, bool isRemoved) {
    const Subtitle subtitle = requestedSubtitle(request, parts.subtitles);
    if (subtitle.source != SubtitleSource::Added)
        throw RouteError(409, QStringLiteral("notAdded"),
                         QStringLiteral("Only a file that was added can be removed."));
    parts.subtitles.setRemoved(subtitle.id, isRemoved);
    parts.changes.announce(subtitle.filmId);
    return jsonResponse({{QStringLiteral("isRemoved"), isRemoved}});
}

} // namespace

void addSubtitleRoutes(Router &router, const SubtitleRouteParts &parts) {
    const auto add = [&](const char *method, const char *path, auto answer) {
        router.add(method, QLatin1String("Api/Subtitles/") + QLatin1String(path),
                   [parts, answer](const Request &request) { return answer(request, parts); });
    };
    add("GET", "File", download);
    add("POST", "UploadGzippedFiles", upload);
    add("GET", "Cues", cues);
    add("PUT", "Timing", move);
    add("POST", "Sync", beginFitting);
    add("GET", "Sync", [](const Request &request, const SubtitleRouteParts &used) {
        return fitting(requestedSubtitle(request, used.subtitles), used.sync);
    });
    add("DELETE", "Sync", endFitting);
    add("GET", "Encoding", encodings);
    add("PUT", "Encoding", setEncoding);
    add("GET", "Language", [](const Request &request, const SubtitleRouteParts &used) {
        return language(requestedSubtitle(request, used.subtitles));
    });
    add("PUT", "Language", setLanguage);
    add("POST", "Removed", [](const Request &request, const SubtitleRouteParts &used) {
        return setRemoved(request, used, true);
    });
    add("DELETE", "Removed", [](const Request &request, const SubtitleRouteParts &used) {
        return setRemoved(request, used, false);
    });
}

} // namespace murvo::service
