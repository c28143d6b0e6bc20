// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Classes/VideoHash.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace murvo {

/// The lookup of a film's subtitles at the service: the form that is sent and the reply that comes back.

/// The form's text. Name and language go in as they stand, without any escaping; a null name reads "(null)".
[[nodiscard]] QString lookupRequestBody(const VideoHash &hash, const QString &fileName,
                                        const QString &nativeLanguage);

struct OfferedSubtitle {
    QString fileName; ///< null when the reply names none
    qint32 subtitleId = 0;
    QString downloadUrl;
};

struct LookupReply {
    qint32 videoId = 0;
    QList<OfferedSubtitle> subtitles; ///< only those that must be downloaded, in the reply's order
};

/// Reads a reply body. What is missing or of a wrong type reads as 0 or nothing; entries without a download
/// address are left out.
[[nodiscard]] LookupReply parseLookupReply(const QByteArray &body);

} // namespace murvo
