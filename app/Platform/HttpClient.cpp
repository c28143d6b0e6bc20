// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Platform/HttpClient.h"

#include <QHostAddress>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <memory>

namespace murvo {

namespace {

// The network layer reports a status of 400 and above as an error of its own; to us it is a response like
// any.
bool isStatusError(QNetworkReply::NetworkError error) {
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
    _running.append(reply);
    connectHandlers(reply, std::move(handlers));
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

QNetworkReply *HttpClient::send(const HttpRequest &request) {
    // The network layer would open files and data URLs too; an address that a service names must not do that.
    const bool isHttp =
        request.url.scheme() == QLatin1String("http") || request.url.scheme() == QLatin1String("https");
    QNetworkRequest network(isHttp ? request.url : QUrl());
    for (const HttpHeader &header : request.headers)
        network.setRawHeader(header.name, header.value);
    if (request.timeout.count() > 0)
        network.setTransferTimeout(static_cast<int>(request.timeout.count()));
    if (request.method == "HEAD")
        return _manager->head(network);
    if (request.method == "POST")
        return _manager->post(network, request.body);
    return _manager->get(network);
}

void HttpClient::connectHandlers(QNetworkReply *reply, HttpHandlers handlers) {
    // A callback may abandon its own connection: the handlers live on until it has returned.
    const auto shared = std::make_shared<const HttpHandlers>(std::move(handlers));
    connect(reply, &QNetworkReply::metaDataChanged, this, [reply, shared] {
        if (shared->didReceiveResponse)
            shared->didReceiveResponse(responseOf(*reply));
    });
    connect(reply, &QNetworkReply::readyRead, this, [reply, shared] {
        const QByteArray chunk = reply->readAll();
        if (!chunk.isEmpty() && shared->didReceiveData && shared->didReceiveData(chunk) == HttpFlow::Enough) {
            reply->setProperty("enough", true);
            reply->abort();
        }
    });
    connect(reply, &QNetworkReply::finished, this, [this, reply, shared] {
        _running.removeOne(reply);
        reply->deleteLater();
        const QByteArray rest = reply->isOpen() ? reply->readAll() : QByteArray();
        const bool isEnough = reply->property("enough").toBool();
        const bool isFinished =
            reply->error() == QNetworkReply::NoError || isStatusError(reply->error()) || isEnough;
        if (!rest.isEmpty() && !isEnough && shared->didReceiveData)
            shared->didReceiveData(rest);
        if (isFinished && shared->didFinishLoading)
            shared->didFinishLoading();
        else if (!isFinished && shared->didFailWithError)
            shared->didFailWithError(reply->errorString());
    });
}

} // namespace murvo
