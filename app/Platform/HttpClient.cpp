// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Platform/HttpClient.h"

#include <QHostAddress>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>

#include <memory>

namespace murvo {

namespace {

// The network layer reports a status of 400 and above as an error of its own; to us it is a response like
// any.
bool isStatusError(const QNetworkReply &reply) {
    const QNetworkReply::NetworkError error = reply.error();
    const bool isOddStatus = // 400 and 418, 407
        error == QNetworkReply::ProtocolInvalidOperationError ||
        error == QNetworkReply::ProxyAuthenticationRequiredError;
    constexpr int firstErrorStatus = 400;
    if (isOddStatus)
        return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() >= firstErrorStatus;
    return (error >= QNetworkReply::ContentAccessDenied && error <= QNetworkReply::UnknownContentError) ||
           (error >= QNetworkReply::InternalServerError && error <= QNetworkReply::UnknownServerError);
}

/// The system's proxies, but never for this machine itself: the embedded service is not behind them.
class ProxyFactory : public QNetworkProxyFactory {
  public:
    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery &query) override {
        if (QHostAddress(query.peerHostName()).isLoopback() ||
            query.peerHostName() == QLatin1String("localhost"))
            return {QNetworkProxy(QNetworkProxy::NoProxy)};
        return systemProxyForQuery(query);
    }
};

HttpResponse responseOf(const QNetworkReply &reply) {
    HttpResponse response;
    response.status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    bool isNumber = false;
    const qint64 length = reply.rawHeader("Content-Length").toLongLong(&isNumber);
    if (isNumber && length >= 0)
        response.expectedContentLength = length;
    return response;
}

} // namespace

HttpClient::HttpClient(QObject *parent)
    : QObject(parent)
    , _manager(new QNetworkAccessManager(this)) {
    _manager->setProxyFactory(new ProxyFactory); // the manager takes it over
}

HttpClient::~HttpClient() {
    abandonAll();
}

void HttpClient::start(const HttpRequest &request, HttpHandlers handlers) {
    QNetworkReply *reply = send(request);
    // The network layer's own limit is for silence only: a server could drip for ever.
    QTimer::singleShot(request.timeout, reply, &QNetworkReply::abort);
    _running.append(reply);
    connectHandlers(reply, std::move(handlers), request.longestBody);
}

void HttpClient::abandonAll() {
    const QList<QNetworkReply *> running = std::exchange(_running, {});
    for (QNetworkReply *reply : running) {
        reply->disconnect(this);
        if (reply->error() == QNetworkReply::NoError) // one that has failed is about to finish by itself
            reply->abort();
        reply->deleteLater();
    }
}

bool HttpClient::canFetch(const QUrl &url) {
    return url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
}

QNetworkReply *HttpClient::send(const HttpRequest &request) {
    QNetworkRequest network(canFetch(request.url) ? request.url : QUrl());
    for (const HttpHeader &header : request.headers)
        network.setRawHeader(header.name, header.value);
    // HTTP/2 would not send a Content-length that differs from the body's, which the lookup needs.
    network.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    if (request.method == "HEAD")
        return _manager->head(network);
    if (request.method == "POST")
        return _manager->post(network, request.body);
    return _manager->get(network);
}

void HttpClient::connectHandlers(QNetworkReply *reply, HttpHandlers handlers, qint64 longestBody) {
    struct Connection {
        HttpHandlers handlers;
        qint64 stillAllowed = 0; // bytes of the body; below 0 once it is too long
        bool isEnough = false;
    };
    // A callback may abandon its own connection: its handlers live on until it has returned.
    const auto connection = std::make_shared<Connection>();
    connection->handlers = std::move(handlers);
    connection->stillAllowed = longestBody;
    const auto read = [reply, connection] {
        const QByteArray chunk = reply->isOpen() ? reply->readAll() : QByteArray();
        if (chunk.isEmpty() || connection->isEnough || connection->stillAllowed < 0)
            return;
        connection->stillAllowed -= chunk.size();
        if (connection->stillAllowed >= 0 && connection->handlers.didReceiveData)
            connection->isEnough = connection->handlers.didReceiveData(chunk) == HttpFlow::Enough;
        if (reply->isRunning() && (connection->isEnough || connection->stillAllowed < 0))
            reply->abort();
    };
    connect(reply, &QNetworkReply::metaDataChanged, this, [reply, connection] {
        if (connection->handlers.didReceiveResponse)
            connection->handlers.didReceiveResponse(responseOf(*reply));
    });
    connect(reply, &QNetworkReply::readyRead, this, read);
    connect(reply, &QNetworkReply::finished, this, [this, reply, connection, read] {
        _running.removeOne(reply);
        reply->deleteLater();
        read();
        const bool isWhole = reply->error() == QNetworkReply::NoError || isStatusError(*reply);
        const bool isFinished = connection->isEnough || (isWhole && connection->stillAllowed >= 0);
        if (isFinished && connection->handlers.didFinishLoading)
            connection->handlers.didFinishLoading();
        else if (!isFinished && connection->handlers.didFailWithError)
            connection->handlers.didFailWithError(reply->errorString());
    });
}

} // namespace murvo
