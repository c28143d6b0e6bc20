// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/ClipRoutes.h"

#include "Export/FilmClips.h"
#include "Http/RequestedFilm.h"
#include "Http/Router.h"
#include "Http/SoundUrls.h"
#include "Sources/FilmFile.h"

#include <QScopeGuard>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

namespace murvo::service {

namespace {

// Voices begin a little before their line shows and end after it.
constexpr qint64 airBeforeMs = 150;
constexpr qint64 airBehindMs = 250;

// Each takes a decoder and up to some seconds. More than a page asks for at once wait for nothing.
constexpr int mostAtOnce = 2;
constexpr int mostWaiting = 6;
constexpr std::chrono::seconds longestWait{5};

/// Whose turn it is to have something cut out of a film. Any thread.
class ClipTurns {
  public:
    /// What cut() makes; throws RouteError when others are before it for too long.
    [[nodiscard]] QByteArray have(const std::function<QByteArray()> &cut) {
        take();
        const auto back = qScopeGuard([this] { give(); });
        return cut();
    }

  private:
    void take() {
        std::unique_lock lock(_mutex);
        bool isMine = _running < mostAtOnce;
        if (!isMine && _waiting < mostWaiting) {
            ++_waiting;
            isMine = _given.wait_for(lock, longestWait, [this] { return _running < mostAtOnce; });
            --_waiting;
        }
        if (!isMine)
            throw RouteError(503, QStringLiteral("busy"),
                             QStringLiteral("Too much is being cut out of films at once; try again."));
        ++_running;
    }

    void give() {
        const std::lock_guard lock(_mutex);
        --_running;
        _given.notify_one();
    }

    std::mutex _mutex;
    std::condition_variable _given;
    int _running = 0;
    int _waiting = 0;
};

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

// Of a token that was logged the signature makes one that opens this line only.
void checkSignature(const Request &request, const LinePlace &line) {
    if (request.byDownloadToken &&
        request.parameters.value(QStringLiteral("signature")) !=
            SoundUrls::signature(request.downloadKey, line.film.id, line.startMs, line.endMs))
        throw RouteError(404, QStringLiteral("notFound"), QStringLiteral("There is nothing here."));
}

QByteArray sound(const LinePlace &line, const std::atomic<bool> &isEnding) {
    return FilmClips(line.film.path, isEnding).sound(line.startMs - airBeforeMs, line.endMs + airBehindMs);
}

QByteArray picture(const LinePlace &line, const std::atomic<bool> &isEnding) {
    return FilmClips(line.film.path, isEnding).picture((line.startMs + line.endMs) / 2);
}

Response soundResponse(const QByteArray &mp3) {
    if (mp3.isEmpty())
        throw RouteError(404, QStringLiteral("noSound"),
                         QStringLiteral("The film has no sound there, or no longer lies where it did."));
    return {200, QByteArrayLiteral("audio/mpeg"), mp3};
}

} // namespace

void addClipRoutes(Router &router, FilmTable &films, const std::atomic<bool> &isEnding) {
    const auto turns = std::make_shared<ClipTurns>();
    const auto add = [&](const char *path, auto cut, auto response) {
        router.add("GET", QLatin1String("Api/Lines/") + QLatin1String(path),
                   [&films, &isEnding, turns, cut, response](const Request &request) {
                       const LinePlace line = requestedPlace(request, films);
                       checkSignature(request, line);
                       if (!liesThere(line.film.path, line.film.sizeBytes))
                           return response(QByteArray());
                       return response(turns->have([&] { return cut(line, isEnding); }));
                   });
    };
    add("Sound", sound, soundResponse);
    add("Picture", picture, pictureResponse);
}

} // namespace murvo::service
