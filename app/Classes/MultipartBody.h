// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace murvo {

struct MultipartFile {
    qint32 id = 0;    ///< the part's name
    QString fileName; ///< written as it is, even with quotation marks in it
    QByteArray data;
};

/// A multipart/form-data body with one part a file. Without files it is the opening line followed at once by
/// the closing one.
[[nodiscard]] QByteArray multipartBody(const QByteArray &boundary, const QList<MultipartFile> &files);

/// 64 random ASCII letters and digits, fresh at each call.
[[nodiscard]] QByteArray randomBoundary();

} // namespace murvo
