// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/MSubtitlesToDownload.h"

#include "app/Classes/MSubtitlesToUpload.h"
#include "app/Platform/HttpClient.h"
#include "app/Platform/Log.h"
#include "app/Platform/NotificationCenter.h"

namespace murvo {

MSubtitlesToDownload::MSubtitlesToDownload(QString name, qint32 id, QString url)
    : subsId(id)
    , downloadUrl(std::move(url))
    , fileName(std::move(name)) {}

void MSubtitlesToDownload::setHttpClient(HttpClient *client) {
    _http = client;
}

void MSubtitlesToDownload::addSubToDownload(std::unique_ptr<MSubtitlesToDownload> sub) {
    subsToDownload.push_back(std::move(sub));
}

void MSubtitlesToDownload::downloadAllSubsAndPlay() {
    nbSubsToDownload = static_cast<qint32>(subsToDownload.size());
    qCInfo(logSubtitles, "Done analyzing video: found %d subtitles to download", nbSubsToDownload);
    if (nbSubsToDownload == 0) {
        NotificationCenter::defaultCenter().post(notifications::launchVideo);
        return;
    }
    for (const auto &sub : subsToDownload)
        sub->download();
}

void MSubtitlesToDownload::download() {
    requestResponseCode = -1;
    HttpHandlers handlers;
    handlers.didReceiveResponse = [this](const HttpResponse &response) {
        requestResponseCode = response.status;
    };
    handlers.didReceiveData = [this](const QByteArray &chunk) {
        downloadedData.append(chunk);
        return HttpFlow::More;
    };
    const auto end = [this] {
        if (!responseProcessed)
            processResponse();
    };
    handlers.didFailWithError = [end](const QString &) { end(); };
    handlers.didFinishLoading = end;
    _http->start({.method = "GET", .url = QUrl(downloadUrl)}, std::move(handlers));
}

void MSubtitlesToDownload::processResponse() {
    responseProcessed = true;
    if (requestResponseCode == 200)
        MSubtitlesToUpload::addSubToUpload({.id = subsId, .fileName = fileName, .data = downloadedData});
    --nbSubsToDownload;
    qCInfo(logSubtitles).noquote().nospace()
        << "Finished downloading subtitles at " << singleLine(downloadUrl)
        << " - Remaining: " << nbSubsToDownload << " subs";
    if (nbSubsToDownload == 0) {
        resetDownloader();
        MSubtitlesToUpload::uploadAllSubs();
    }
}

void MSubtitlesToDownload::resetDownloader() {
    subsToDownload.clear();
    nbSubsToDownload = 0;
}

} // namespace murvo
