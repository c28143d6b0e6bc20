// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QUrl>

#include <chrono>
#include <functional>

class QNetworkAccessManager;
class QNetworkReply;

namespace murvo {

struct HttpHeader {
    QByteArray name;
    QByteArray value;
};

struct HttpRequest {
    QByteArray method; ///< "GET", "HEAD" or "POST"
    QUrl url;
    QList<HttpHeader> headers = {};
    QByteArray body = {};
    /// For the whole: waiting for a free connection, redirects, sending and receiving. What has come by then
    /// has been handed over.
    std::chrono::milliseconds timeout = std::chrono::seconds(60);
    qint64 longestBody = 64 * 1024 * 1024; ///< bytes; a longer one is a failure
};

struct HttpResponse {
    int status = 0;                    ///< of the last response when redirects were followed
    qint64 expectedContentLength = -1; ///< bytes; -1 when the server gives no length
};

/// What a receiver of data says to the connection.
enum class HttpFlow { More, Enough };

/// The callbacks of one connection: the response, the body's chunks, then either the end or the failure.
/// A status such as 404 is no failure. Any of them may be empty. "Enough" ends the connection as finished.
struct HttpHandlers {
    std::function<void(const HttpResponse &)> didReceiveResponse = {};
    std::function<HttpFlow(const QByteArray &)> didReceiveData = {};
    std::function<void()> didFinishLoading = {};
    std::function<void(const QString &error)> didFailWithError = {};
};

/// HTTP connections on the thread on which the client was made. Redirects are followed. Every connection ends
/// in exactly one of its two last callbacks, unless it is abandoned.
class HttpClient : public QObject {
    Q_OBJECT

  public:
    explicit HttpClient(QObject *parent = nullptr);
    ~HttpClient() override;

    /// Whether the URL is of HTTP, encrypted or not. The network layer would open files and data URLs too; an
    /// address that a service names must not do that.
    [[nodiscard]] static bool canFetch(const QUrl &url);

    /// Returns before any callback; a URL that it cannot fetch fails like an unreachable host.
    void start(const HttpRequest &request, HttpHandlers handlers);

    /// Ends every connection without a further callback.
    void abandonAll();

  private:
    QNetworkReply *send(const HttpRequest &request);
    void connectHandlers(QNetworkReply *reply, HttpHandlers handlers, qint64 longestBody);

    QNetworkAccessManager *_manager;
    QList<QNetworkReply *> _running;
};

} // namespace murvo
