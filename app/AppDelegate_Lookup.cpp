// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/AppDelegate.h"

#include "app/Classes/MConstants.h"
#include "app/Classes/MSubtitlesToDownload.h"
#include "app/Classes/SubtitleLookup.h"
#include "app/Classes/VideoSource.h"

#include <QSettings>
#include <QThread>

namespace murvo {

namespace {

constexpr std::chrono::seconds lookupTimeout{120};

/// The name that the user's preferences give to films without one; null without one.
QString preferredFileName() {
    const QVariant value = QSettings().value(QStringLiteral("file-name"));
    // A comma written by hand makes a list of it.
    return value.typeId() == QMetaType::QStringList ? value.toStringList().join(QStringLiteral(", "))
                                                    : value.toString();
}

} // namespace

void AppDelegate::receiveHash(const VideoHash &hash) {
    if (QThread::currentThread() == thread()) {
        onHashComputed(hash);
        return;
    }
    // The thread that posts is given up before the generation changes, so the number read here is the film's
    // own.
    QMetaObject::invokeMethod(
        this,
        [this, hash, generation = _generation.load()] {
            if (generation == _generation)
                onHashComputed(hash);
        },
        Qt::QueuedConnection);
}

void AppDelegate::onHashComputed(const VideoHash &hash) {
    if (isUrl()) {
        _session.videoFileName = preferredFileName();
    } else {
        _session.videoFileName = lastPathComponent(_session.videoSourcePath);
        if (_serviceLink.filmIdentified)
            _serviceLink.filmIdentified(_session.videoSourcePath, hash);
    }
    const QString body = lookupRequestBody(hash, _session.videoFileName, _session.nativeLanguage);
    const HttpRequest request{
        .method = "POST",
        .url = QUrl(MConstants::serviceAddress(QStringLiteral("Api/MovieFile/GetSubtitlesToDownload"))),
        .headers = {{"Content-type", "application/x-www-form-urlencoded"},
                    // Characters, not bytes: services count on it, though it cuts the body short for a name
                    // with letters outside ASCII.
                    {"Content-length", QByteArray::number(body.size())}},
        .body = body.toUtf8(),
        .timeout = lookupTimeout};

    HttpHandlers handlers;
    handlers.didReceiveResponse = [this](const HttpResponse &response) {
        _session.videoProcessStatusCode = response.status;
    };
    handlers.didReceiveData = [this](const QByteArray &chunk) {
        _session.subtitlesData.append(chunk);
        return HttpFlow::More;
    };
    handlers.didFailWithError = [this](const QString &) { alertVideoProcessingError(); };
    handlers.didFinishLoading = [this] { lookupDidFinishLoading(); };
    _videoConnections.start(request, std::move(handlers));
}

void AppDelegate::lookupDidFinishLoading() {
    if (_session.videoProcessStatusCode != 200) {
        alertVideoProcessingError();
        return;
    }
    LookupReply reply = parseLookupReply(_session.subtitlesData);
    _session.videoId = reply.videoId;
    for (OfferedSubtitle &subtitle : reply.subtitles)
        MSubtitlesToDownload::addSubToDownload(std::make_unique<MSubtitlesToDownload>(
            std::move(subtitle.fileName), subtitle.subtitleId, std::move(subtitle.downloadUrl)));
    MSubtitlesToDownload::downloadAllSubsAndPlay();
}

void AppDelegate::alertVideoProcessingError() {
    alertThenHome(QStringLiteral("Something went wrong."),
                  QStringLiteral("We couldn't find subtitles for your video. Please try again later!"));
}

} // namespace murvo
