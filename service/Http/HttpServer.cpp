// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/HttpServer.h"

#include "Http/Access.h"
#include "Http/Router.h"
#include "Log.h"

#include <QTemporaryFile>

#include <httplib.h>

#include <algorithm>
#include <atomic>
#include <thread>

namespace murvo::service {

Q_LOGGING_CATEGORY(serviceLog, "murvo.service")

namespace {

// One request a connection. Kept alive, a connection could be closed just as the web engine takes it up
// again. The engine then asks anew on another connection, but takes the change for one of the page's network
// and refuses the answer: "Request had a target IP address space of `unknown`". On loopback a new connection
// costs next to nothing.
constexpr size_t requestsPerConnection = 1;
// A connection holds a thread of the pool until it is answered, or for as long as it may stay silent;
// stopping waits for that. The player and its pages open about a dozen at once.
constexpr int poolThreads = 32;
constexpr time_t silenceLimitSeconds = 1;
constexpr time_t readTimeoutSeconds = 5;
// Enough for the subtitles of one film, many times over.
constexpr size_t largestBodyBytes = 64UL * 1024 * 1024;
// All that a learner has, which goes through a file.
constexpr size_t largestFileBytes = 2048UL * 1024 * 1024;
// Longer paths do not exist here; the library matches paths with a recursive regular expression.
constexpr size_t longestPathBytes = 256;

constexpr auto uploadPath = "Api/Subtitles/UploadGzippedFiles";
constexpr auto filePath = "Api/Learner/File";
// Holds the upload's own Content-Type while the library is told another (see hideMultipart).
constexpr auto hiddenTypeHeader = "X-Murvo-Content-Type";
// The same for the path of a body that is not to lie in memory (see sendToFile).
constexpr auto hiddenPathHeader = "X-Murvo-Path";
constexpr auto pathOfLargeBodies = "/large-body";

httplib::Headers securityHeaders() {
    return {{"Content-Security-Policy",
             "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; "
             "connect-src 'self'; frame-src app:; base-uri 'none'; "
             "form-action 'none'; frame-ancestors 'none'"},
            {"X-Content-Type-Options", "nosniff"},
            {"Referrer-Policy", "no-referrer"},
            {"Cross-Origin-Resource-Policy", "same-origin"},
            {"Cache-Control", "no-store"}};
}

QByteArrayList valuesOf(const httplib::Request &request, const char *name) {
    QByteArrayList values;
    const auto range = request.headers.equal_range(name);
    std::for_each(range.first, range.second,
                  [&values](const auto &header) { values.append(QByteArray::fromStdString(header.second)); });
    return values;
}

void writeFile(const Response &from, httplib::Response &to) {
    const auto send = [file = from.file](size_t at, size_t length, httplib::DataSink &sink) {
        constexpr size_t pieceBytes = 262'144;
        const QByteArray piece = file->seek(static_cast<qint64>(at))
                                     ? file->read(static_cast<qint64>(std::min(length, pieceBytes)))
                                     : QByteArray();
        return !piece.isEmpty() && sink.write(piece.constData(), static_cast<size_t>(piece.size()));
    };
    to.set_content_provider(static_cast<size_t>(from.file->size()), from.contentType.toStdString(), send);
}

void write(const Response &from, httplib::Response &to) {
    to.status = from.status;
    if (!from.fileName.isEmpty())
        to.set_header("Content-Disposition", "attachment; filename=\"" + from.fileName.toStdString() + '"');
    if (from.file) {
        writeFile(from, to);
        return;
    }
    to.set_content(from.body.constData(), static_cast<size_t>(from.body.size()),
                   from.contentType.toStdString());
}

Response errorForStatus(int status) {
    switch (status) {
    case 404:
        return errorResponse(404, QStringLiteral("notFound"), QStringLiteral("There is nothing here."));
    case 413:
        return errorResponse(413, QStringLiteral("tooLarge"), QStringLiteral("The request is too large."));
    case 414:
        return errorResponse(414, QStringLiteral("tooLong"), QStringLiteral("The address is too long."));
    default:
        return errorResponse(400, QStringLiteral("badRequest"),
                             QStringLiteral("The request could not be read."));
    }
}

// The library would cut a page's file or a reply to the range and still call it whole (200).
void forgetRanges(const httplib::Request &request) {
    const_cast<httplib::Request &>(request).ranges.clear();
}

// The library refuses multipart bodies that the player may rightly send (one without a part, for instance)
// before any route sees them. Told that the body is plain bytes it hands it over whole, and the route reads
// it itself.
void hideMultipart(const httplib::Request &request) {
    auto &headers = const_cast<httplib::Request &>(request).headers;
    const auto type = headers.find("Content-Type");
    if (type == headers.end())
        return;
    const std::string original = type->second;
    type->second = "application/octet-stream";
    headers.emplace(hiddenTypeHeader, original);
}

size_t bodyBytes(const httplib::Request &request) {
    return request.get_header_value<uint64_t>("Content-Length");
}

// The library keeps a body in memory, whatever its size, unless another handler takes it piece by piece.
void sendToFile(const httplib::Request &request) {
    auto &changed = const_cast<httplib::Request &>(request);
    changed.headers.emplace(hiddenPathHeader, request.path);
    changed.path = pathOfLargeBodies;
}

} // namespace

struct HttpServer::Impl {
    Impl(const Router &usedRouter, QString folderOfFiles)
        : router(usedRouter)
        , folder(std::move(folderOfFiles)) {}

    void configure();
    void listen() noexcept;
    [[nodiscard]] std::optional<Response> refuse(const httplib::Request &request) const;
    void answer(const httplib::Request &from, httplib::Response &to) const;
    void answerLarge(const httplib::Request &from, httplib::Response &to,
                     const httplib::ContentReader &reader) const;
    [[nodiscard]] Request requestOf(const httplib::Request &from) const;
    [[nodiscard]] Response takeFile(const httplib::Request &from, const httplib::ContentReader &reader) const;

    const Router &router;
    const QString folder;
    httplib::Server server;
    std::unique_ptr<Access> access;
    std::thread listener;
    std::atomic<bool> listenerEnded{false};
};

void HttpServer::Impl::configure() {
    server.new_task_queue = [] { return new httplib::ThreadPool(poolThreads); };
    server.set_tcp_nodelay(true);
    server.set_keep_alive_timeout(silenceLimitSeconds);
    server.set_keep_alive_max_count(requestsPerConnection);
    server.set_read_timeout(readTimeoutSeconds);
    server.set_payload_max_length(largestFileBytes);
    server.set_default_headers(securityHeaders());
    server.set_exception_handler([](const auto &, auto &to, const std::exception_ptr &) {
        write(errorResponse(500, QStringLiteral("internal"), QStringLiteral("The service failed.")), to);
    });
    server.set_error_handler([](const httplib::Request &from, httplib::Response &to) {
        forgetRanges(from);
        if (to.body.empty())
            write(errorForStatus(to.status), to);
    });
    server.set_pre_routing_handler([this](const httplib::Request &from, httplib::Response &to) {
        auto &headers = const_cast<httplib::Request &>(from).headers;
        headers.erase(hiddenTypeHeader);
        headers.erase(hiddenPathHeader);
        forgetRanges(from);
        if (const auto refusal = refuse(from)) {
            write(*refusal, to);
            return httplib::Server::HandlerResponse::Handled;
        }
        const auto path = access->pathBelowToken(QByteArray::fromStdString(from.path));
        const bool isLarge = bodyBytes(from) > largestBodyBytes;
        if (path == QLatin1String(uploadPath) || isLarge || path == QLatin1String(filePath))
            hideMultipart(from);
        if (isLarge || (path == QLatin1String(filePath) && from.method == "POST"))
            sendToFile(from);
        return httplib::Server::HandlerResponse::Unhandled;
    });
    const auto handler = [this](const httplib::Request &from, httplib::Response &to) { answer(from, to); };
    const auto largeHandler = [this](const httplib::Request &from, httplib::Response &to,
                                     const httplib::ContentReader &reader) { answerLarge(from, to, reader); };
    server.Post(pathOfLargeBodies, largeHandler).Put(pathOfLargeBodies, largeHandler);
    server.Patch(pathOfLargeBodies, largeHandler).Delete(pathOfLargeBodies, largeHandler);
    const std::string anything = "/.*";
    server.Get(anything, handler).Post(anything, handler).Put(anything, handler);
    // The router takes none of these, but it is the one to say so.
    server.Patch(anything, handler).Delete(anything, handler).Options(anything, handler);
}

void HttpServer::Impl::listen() noexcept {
    try {
        if (!server.listen_after_bind())
            qCWarning(serviceLog) << "The service has stopped listening";
    } catch (const std::exception &error) {
        qCWarning(serviceLog) << "The service cannot listen:" << error.what(); // no threads to be had
    }
    listenerEnded = true;
}

std::optional<Response> HttpServer::Impl::refuse(const httplib::Request &request) const {
    if (!access->headersAllowed(valuesOf(request, "Host"), valuesOf(request, "Origin")))
        return errorResponse(403, QStringLiteral("forbidden"),
                             QStringLiteral("The service answers its own pages only."));
    if (request.path.size() > longestPathBytes ||
        !access->pathBelowToken(QByteArray::fromStdString(request.path)))
        return errorForStatus(404);
    // Neither the limit of the body nor its check counts for these two, and no client of the service needs
    // them.
    if (request.has_header("Transfer-Encoding") || request.has_header("Content-Encoding"))
        return errorResponse(415, QStringLiteral("encodingRefused"),
                             QStringLiteral("Send the body as it is, with its length."));
    return std::nullopt;
}

Request HttpServer::Impl::requestOf(const httplib::Request &from) const {
    Request request;
    request.method =
        from.method == "HEAD" ? QByteArrayLiteral("GET") : QByteArray::fromStdString(from.method);
    const std::string path =
        from.has_header(hiddenPathHeader) ? from.get_header_value(hiddenPathHeader) : from.path;
    request.path = access->pathBelowToken(QByteArray::fromStdString(path)).value_or(QString());
    for (const auto &[name, value] : from.params)
        request.parameters.insert(QString::fromStdString(name), QString::fromStdString(value));
    const char *typeHeader = from.has_header(hiddenTypeHeader) ? hiddenTypeHeader : "Content-Type";
    request.contentType = QByteArray::fromStdString(from.get_header_value(typeHeader));
    request.downloadBaseUrl = access->downloadBaseUrl();
    request.downloadKey = access->downloadKey();
    request.byDownloadToken = access->isByDownloadToken(QByteArray::fromStdString(path));
    return request;
}

void HttpServer::Impl::answer(const httplib::Request &from, httplib::Response &to) const {
    Request request = requestOf(from);
    request.body = QByteArray::fromStdString(from.body);
    write(router.answer(request), to);
}

// What is too large is read to its end all the same, for the client to see the answer.
void HttpServer::Impl::answerLarge(const httplib::Request &from, httplib::Response &to,
                                   const httplib::ContentReader &reader) const {
    if (requestOf(from).path == QLatin1String(filePath)) {
        write(takeFile(from, reader), to);
        return;
    }
    std::ignore = reader([](const char *, size_t) { return true; });
    write(errorForStatus(413), to);
}

Response HttpServer::Impl::takeFile(const httplib::Request &from,
                                    const httplib::ContentReader &reader) const {
    QTemporaryFile file(folder + QStringLiteral("/murvo-copy-XXXXXX"));
    bool isWritten = file.open();
    const bool isRead = reader([&](const char *bytes, size_t count) {
        const auto size = static_cast<qint64>(count);
        isWritten = isWritten && file.write(bytes, size) == size;
        return true;
    });
    if (!isRead)
        return errorForStatus(bodyBytes(from) > largestFileBytes ? 413 : 400);
    if (!isWritten || !file.flush())
        return diskFullResponse();
    Request request = requestOf(from);
    request.bodyFile = file.fileName();
    return router.answer(request);
}

std::unique_ptr<HttpServer> HttpServer::start(const Router &router, const QString &folder) {
    auto impl = std::make_unique<Impl>(router, folder);
    const int port = impl->server.bind_to_any_port("127.0.0.1");
    if (port <= 0)
        return nullptr;
    impl->access = std::make_unique<Access>(static_cast<quint16>(port));
    impl->configure();
    // The socket is bound and accepts from here on; a client that is quicker than the thread waits in its
    // queue.
    Impl *running = impl.get();
    impl->listener = std::thread([running] { running->listen(); });
    std::unique_ptr<HttpServer> started(new HttpServer(std::move(impl)));
    while (!running->server.is_running()) { // stopping before it runs would be forgotten
        if (running->listenerEnded)
            return nullptr;
        std::this_thread::yield();
    }
    return started;
}

HttpServer::HttpServer(std::unique_ptr<Impl> impl)
    : _impl(std::move(impl)) {}

HttpServer::~HttpServer() {
    _impl->server.stop();
    _impl->listener.join();
}

QString HttpServer::baseUrl() const {
    return _impl->access->baseUrl();
}

} // namespace murvo::service
