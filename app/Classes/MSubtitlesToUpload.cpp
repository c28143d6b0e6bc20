// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/MSubtitlesToUpload.h"

#include "app/Classes/MConstants.h"
#include "app/Platform/HttpClient.h"
#include "app/Platform/Log.h"
#include "app/Platform/NotificationCenter.h"

namespace murvo {

void MSubtitlesToUpload::setHttpClient(HttpClient *client) {
    _http = client;
}

void MSubtitlesToUpload::addSubToUpload(MultipartFile file) {
    subsToUpload.append(std::move(file));
}

void MSubtitlesToUpload::uploadAllSubs() {
    const QByteArray boundary = randomBoundary();
    HttpRequest request{
        .method = "POST",
        .url = QUrl(MConstants::serviceAddress(QStringLiteral("Api/Subtitles/UploadGzippedFiles"))),
        .body = multipartBody(boundary, subsToUpload)};
    request.headers = {{"Content-Type", "multipart/form-data; boundary=" + boundary},
                       {"Content-Length", QByteArray::number(request.body.size())}};

    HttpHandlers handlers;
    handlers.didReceiveResponse = [](const HttpResponse &response) { requestResponseCode = response.status; };
    handlers.didFailWithError = [](const QString &error) {
        qCWarning(logSubtitles).noquote() << "Met an error uploading subtitles:" << error;
        if (!responseProcessed)
            processResponse();
    };
    handlers.didFinishLoading = [] {
        if (!responseProcessed)
            processResponse();
    };
    _http->start(request, std::move(handlers));
}

void MSubtitlesToUpload::processResponse() {
    responseProcessed = true;
    if (requestResponseCode == 200)
        qCInfo(logSubtitles, "Successfully uploaded all downloaded subtitles");
    else
        qCWarning(logSubtitles, "Failed to upload downloaded subtitles");
    resetUploader();
    NotificationCenter::defaultCenter().post(notifications::launchVideo);
}

void MSubtitlesToUpload::resetUploader() {
    subsToUpload.clear();
    responseProcessed = false;
}

} // namespace murvo
