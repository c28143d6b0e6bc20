// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/Message.h"

#include <QJsonDocument>

#include <algorithm>

namespace murvo::service {

namespace {

QByteArray toBytes(const QJsonObject &object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QByteArray jsonType() {
    return QByteArrayLiteral("application/json; charset=utf-8");
}

} // namespace

qint32 Request::wholeNumber(const QString &name, qint32 smallest) const {
    const QString text = parameters.value(name);
    const bool digits = std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    bool ok = false;
    const qint32 number = text.toInt(&ok);
    if (!ok || !digits || number < smallest)
        throw RouteError(400, QStringLiteral("badParameter"),
                         QStringLiteral("The parameter \"%1\" must be a whole number, %2 or more.")
                             .arg(name)
                             .arg(smallest));
    return number;
}

qint32 Request::positiveId(const QString &name) const {
    return wholeNumber(name, 1);
}

Response jsonResponse(const QJsonObject &object) {
    return {200, jsonType(), toBytes(object), {}};
}

Response errorResponse(int status, const QString &code, const QString &message) {
    const QJsonObject error{{QStringLiteral("code"), code}, {QStringLiteral("message"), message}};
    return {status, jsonType(), toBytes({{QStringLiteral("error"), error}}), {}};
}

Response diskFullResponse() {
    return errorResponse(
        507, QStringLiteral("diskFull"),
        QStringLiteral("The disk is full, so this was not kept. Make room on it and try again."));
}

QJsonObject jsonBody(const Request &request) {
    const QJsonDocument document = QJsonDocument::fromJson(request.body);
    if (!document.isObject())
        throw RouteError(400, QStringLiteral("badJson"), QStringLiteral("The body must be one JSON object."));
    return document.object();
}

} // namespace murvo::service
