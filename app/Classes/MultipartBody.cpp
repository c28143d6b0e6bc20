// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/MultipartBody.h"

#include "app/Classes/TextFormat.h"

#include <QRandomGenerator>

#include <string_view>

namespace murvo {

QByteArray multipartBody(const QByteArray &boundary, const QList<MultipartFile> &files) {
    QByteArray body = "--" + boundary + "\r\n";
    for (qsizetype i = 0; i < files.size(); ++i) {
        const MultipartFile &file = files[i];
        body += "Content-Disposition: form-data; name=\"" + QByteArray::number(file.id) + "\"; filename=\"" +
                orNullText(file.fileName).toUtf8() + "\"\r\n\r\n";
        body += file.data;
        if (i + 1 < files.size())
            body += "\r\n--" + boundary + "\r\n";
    }
    body += "\r\n--" + boundary + "--\r\n";
    return body;
}

QByteArray randomBoundary() {
    constexpr std::string_view alphabet = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    constexpr int length = 64;
    QByteArray boundary;
    for (int i = 0; i < length; ++i)
        boundary += alphabet[QRandomGenerator::system()->generate() % alphabet.size()];
    return boundary;
}

} // namespace murvo
