// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace murvo::service {

/// One part of a multipart/form-data body.
struct MultipartPart {
    QByteArray name;
    QString fileName;
    QByteArray content;
};

/// The boundary of a Content-Type header; none when it is not multipart/form-data or names no boundary.
[[nodiscard]] std::optional<QByteArray> multipartBoundary(const QByteArray &contentType);

/// The parts in their order. Tolerant: a body with no part at all, without its end, without its last line
/// break, cut anywhere, or with text before the first boundary yields the parts that are whole up to a
/// boundary or the end; a part without a name is passed over. Takes any bytes; at most mostParts parts are
/// read.
[[nodiscard]] QList<MultipartPart> readMultipart(const QByteArray &body, const QByteArray &boundary,
                                                 qsizetype mostParts);

} // namespace murvo::service
