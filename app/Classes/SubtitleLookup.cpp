// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/SubtitleLookup.h"

#include "app/Classes/LenientNumber.h"
#include "app/Classes/OSHashAlgorithm.h"
#include "app/Classes/TextFormat.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace murvo {

QString lookupRequestBody(const VideoHash &hash, const QString &fileName, const QString &nativeLanguage) {
    return QStringLiteral("fileSize=") + QString::number(hash.fileSize) + QStringLiteral("&movieHash=") +
           OSHashAlgorithm::stringForHash(hash.fileHash) + QStringLiteral("&fileName=") +
           orNullText(fileName) + QStringLiteral("&targetLanguageCode=eng&nativeLanguageCode=") +
           orNullText(nativeLanguage);
}

LookupReply parseLookupReply(const QByteArray &body) {
    const QJsonObject root = QJsonDocument::fromJson(body).object();
    LookupReply reply;
    reply.videoId = intValue(root.value(QLatin1String("videoId")));
    const QJsonArray entries = root.value(QLatin1String("subsToDownload")).toArray();
    for (const auto &entry : entries) {
        const QJsonObject object = entry.toObject();
        const QString downloadUrl = object.value(QLatin1String("downloadUrl")).toString();
        if (downloadUrl.isEmpty() || !object.value(QLatin1String("mustBeDownloaded")).toBool())
            continue;
        reply.subtitles.append({.fileName = object.value(QLatin1String("subFileName")).toString(),
                                .subtitleId = intValue(object.value(QLatin1String("subtitleId"))),
                                .downloadUrl = downloadUrl});
    }
    return reply;
}

} // namespace murvo
