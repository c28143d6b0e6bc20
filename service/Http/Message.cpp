// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/Message.h"

#include <QJsonDocument>

namespace murvo::service {

namespace {

QByteArray toBytes(const QJsonObject &object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QByteArray jsonType() {
    return QByteArrayLiteral("application/json; charset=utf-8");
}

} // namespace

qint32 Request::positiveId(const QString &name) const {
    bool ok = false;
    const qint32 id = parameters.value(name).toInt(&ok);
    if (!ok || id <= 0)
        throw RouteError(400, QStringLiteral("badParameter"),
                         QStringLiteral("The parameter \"%1\" must be a whole number above 0.").arg(name));
    return id;
}

Response jsonResponse(const QJsonObject &object) {
    return {200, jsonType(), toBytes(object)};
}

Response errorResponse(int status, const QString &code, const QString &message) {
    const QJsonObject error{{QStringLiteral("code"), code}, {QStringLiteral("message"), message}};
    return {status, jsonType(), toBytes({{QStringLiteral("error"), error}})};
}

QJsonObject jsonBody(const Request &request) {
    const QJsonDocument document = QJsonDocument::fromJson(request.body);
    if (!document.isObject())
        throw RouteError(400, QStringLiteral("badJson"), QStringLiteral("The body must be one JSON object."));
    return document.object();
}

} // namespace murvo::service
