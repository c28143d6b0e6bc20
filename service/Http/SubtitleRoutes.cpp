// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/SubtitleRoutes.h"

#include "Http/Multipart.h"
#include "Http/Router.h"
#include "Http/SubtitleJson.h"
#include "Sources/Sidecars.h"
#include "Store/FilmTable.h"
#include "Store/SubtitleTable.h"
#include "Subtitles/FilmLines.h"
#include "Subtitles/Gunzip.h"

#include <QJsonArray>

namespace murvo::service {

namespace {

constexpr qsizetype mostParts = 256;
constexpr qsizetype largestSubtitleBytes = 8LL * 1024 * 1024;

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
    auto content = film ? readSidecar(film->path, subtitle.fileName) : std::nullopt;
    if (!content)
        content = parts.subtitles.content(subtitle.id);
    if (!content)
        throw RouteError(404, QStringLiteral("fileGone"),
                         QStringLiteral("The subtitle file is no longer beside the film."));
    return {200, "application/octet-stream", *content};
}

// An empty text says that the part was stored, any other why not.
QString storePart(const MultipartPart &part, SubtitleTable &subtitles) {
    bool isNumber = false;
    const qint32 id = part.name.toInt(&isNumber);
    if (!isNumber || id <= 0)
        return QStringLiteral("badName");
    auto content = isGzip(part.content) ? gunzip(part.content, largestSubtitleBytes) : part.content;
    if (!content)
        return QStringLiteral("badGzip");
    if (content->size() > largestSubtitleBytes)
        return QStringLiteral("tooLarge");
    return subtitles.storeContent(id, *content) ? QString() : QStringLiteral("unknownSubtitle");
}

Response upload(const Request &request, SubtitleTable &subtitles) {
    const auto boundary = multipartBoundary(request.contentType);
    if (!boundary)
        throw RouteError(400, QStringLiteral("notMultipart"),
                         QStringLiteral("The body must be multipart/form-data with a boundary."));
    int stored = 0;
    QJsonArray refused;
    for (const MultipartPart &part : readMultipart(request.body, *boundary, mostParts)) {
        const QString code = storePart(part, subtitles);
        if (code.isEmpty())
            ++stored;
        else
            refused.append(QJsonObject{{QStringLiteral("name"), QString::fromUtf8(part.name)},
                                       {QStringLiteral("code"), code}});
    }
    return jsonResponse({{QStringLiteral("stored"), stored}, {QStringLiteral("refused"), refused}});
}

Response cues(const Request &request, const SubtitleRouteParts &parts) {
    const Subtitle subtitle = requestedSubtitle(request, parts.subtitles);
    if (!subtitle.stored())
        throw RouteError(409, QStringLiteral("notStored"),
                         QStringLiteral("This subtitle has not been uploaded yet."));
    const ReadTrack track = parts.lines.readOne(parts.films.find(subtitle.filmId).value_or(Film{}), subtitle);
    if (track.reading.problem != CueProblem::None) {
        const QJsonObject problem = problemJson(track.reading.problem);
        throw RouteError(422, problem.value(QLatin1String("code")).toString(),
                         problem.value(QLatin1String("message")).toString());
    }
    QJsonObject object = subtitleJson(subtitle);
    object.insert(QStringLiteral("cues"), cuesJson(track.reading.cues));
    return jsonResponse(object);
}

} // namespace

void addSubtitleRoutes(Router &router, const SubtitleRouteParts &parts) {
    router.add("GET", QStringLiteral("Api/Subtitles/File"),
               [parts](const Request &request) { return download(request, parts); });
    router.add("POST", QStringLiteral("Api/Subtitles/UploadGzippedFiles"),
               [parts](const Request &request) { return upload(request, parts.subtitles); });
    router.add("GET", QStringLiteral("Api/Subtitles/Cues"),
               [parts](const Request &request) { return cues(request, parts); });
}

} // namespace murvo::service
