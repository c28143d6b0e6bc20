// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/StubService.h"

#include <QTcpSocket>
#include <QTimer>

#include <chrono>
#include <utility>

#include <sys/socket.h>

namespace murvo::test {

namespace {

QByteArray pathOf(const QByteArray &target) {
    return target.mid(1).split('?').first();
}

/// With a reset, where closing alone would look like the end of the answer.
void reset(QTcpSocket *socket) {
    const linger atOnce{.l_onoff = 1, .l_linger = 0};
    ::setsockopt(static_cast<int>(socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    socket->abort();
}

void drip(QTcpSocket *socket, const QByteArray &bytes) {
    auto *timer = new QTimer(socket);
    QObject::connect(timer, &QTimer::timeout, socket, [socket, timer, bytes, sent = 0]() mutable {
        socket->write(bytes.mid(sent, 1));
        if (++sent == bytes.size()) {
            timer->stop();
            socket->disconnectFromHost();
        }
    });
    timer->start(std::chrono::milliseconds(100));
}

QByteArray serialize(const StubReply &reply, const QByteArray &method) {
    QByteArray head = "HTTP/1.1 " + QByteArray::number(reply.status) + " Stub\r\n";
    head += "Content-Type: " + reply.contentType + "\r\n";
    const qint64 length = reply.declaredLength == -1 ? reply.body.size() : reply.declaredLength;
    if (length >= 0)
        head += "Content-Length: " + QByteArray::number(length) + "\r\n";
    for (const QByteArray &line : reply.extraHeaders)
        head += line + "\r\n";
    head += "Connection: close\r\n\r\n";
    return method == "HEAD" ? head : head + reply.body;
}

} // namespace

QByteArray RecordedRequest::header(const QByteArray &name) const {
    const QList<QByteArray> lines = head.split('\n');
    for (const QByteArray &line : lines) {
        const qsizetype colon = line.indexOf(':');
        if (colon > 0 && line.left(colon).compare(name, Qt::CaseInsensitive) == 0)
            return line.mid(colon + 1).trimmed();
    }
    return {};
}

StubService::StubService(QObject *parent)
    : QObject(parent) {
    if (!_server.listen(QHostAddress::LocalHost))
        qFatal("stub service: no port");
    _port = _server.serverPort();
    connect(&_server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket *socket = _server.nextPendingConnection()) {
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { readFrom(socket); });
            connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
                _received.remove(socket);
                _streams.removeIf([socket](const auto &stream) { return stream.value() == socket; });
                socket->deleteLater();
            });
        }
    });
}

StubService::~StubService() {
    const QList<QTcpSocket *> sockets = _server.findChildren<QTcpSocket *>();
    for (QTcpSocket *socket : sockets)
        socket->disconnect(this);
}

QString StubService::baseUrl() const {
    return QStringLiteral("http://127.0.0.1:%1/").arg(_port);
}

void StubService::on(const QByteArray &path, Handler handler) {
    _handlers[path] = std::move(handler);
}

void StubService::on(const QByteArray &path, const StubReply &reply) {
    on(path, [reply](const RecordedRequest &) { return reply; });
}

StubService::Handler StubService::bytesWithRanges(const QByteArray &bytes) {
    return [bytes](const RecordedRequest &request) {
        const QByteArray range = request.header("Range");
        if (range.isNull())
            return StubReply{.body = bytes, .extraHeaders = {"Accept-Ranges: bytes"}};
        const QList<QByteArray> bounds = range.mid(QByteArray("bytes=").size()).split('-');
        const qsizetype first = bounds[0].toLongLong();
        const QByteArray part = bounds.value(1).isEmpty()
                                    ? bytes.mid(first)
                                    : bytes.mid(first, bounds[1].toLongLong() - first + 1);
        const QByteArray last = QByteArray::number(first + part.size() - 1);
        return StubReply{.status = 206,
                         .body = part,
                         .extraHeaders = {"Content-Range: bytes " + bounds[0] + '-' + last + '/' +
                                          QByteArray::number(bytes.size())}};
    };
}

QList<RecordedRequest> StubService::requestsTo(const QByteArray &path) const {
    QList<RecordedRequest> found;
    for (const RecordedRequest &request : _requests) {
        if (pathOf(request.target) == path)
            found.append(request);
    }
    return found;
}

void StubService::readFrom(QTcpSocket *socket) {
    QByteArray &received = _received[socket];
    received += socket->readAll();
    const qsizetype end = received.indexOf("\r\n\r\n");
    if (end < 0)
        return;
    RecordedRequest request;
    request.head = received.left(end + 2);
    const QList<QByteArray> words = request.head.left(request.head.indexOf('\r')).split(' ');
    request.method = words.value(0);
    request.target = words.value(1);
    const qint64 length = request.header("Content-Length").toLongLong();
    if (received.size() < end + 4 + length)
        return;
    request.body = received.mid(end + 4);
    received.clear();
    _requests.append(request);
    answer(socket, request);
}

void StubService::answer(QTcpSocket *socket, const RecordedRequest &request) {
    const auto handler = _handlers.constFind(pathOf(request.target));
    const StubReply reply = handler == _handlers.cend() ? StubReply{.status = 404} : (*handler)(request);
    if (reply.isHeld) {
        _held.append({socket, serialize(reply, request.method)});
        return;
    }
    if (reply.isReset) {
        reset(socket);
        return;
    }
    const QByteArray bytes = serialize(reply, request.method);
    if (reply.resetAfter >= 0) {
        socket->write(bytes.left(reply.resetAfter));
        socket->flush();
        reset(socket);
        return;
    }
    if (reply.isDripped) {
        drip(socket, bytes);
        return;
    }
    socket->write(bytes);
    if (reply.isStream)
        _streams.insert(pathOf(request.target), socket);
    else
        socket->disconnectFromHost();
}

void StubService::stream(const QByteArray &path, const QByteArray &bytes) {
    if (QTcpSocket *socket = _streams.value(path))
        socket->write(bytes);
}

void StubService::goDown() {
    _server.close();
    const QList<QTcpSocket *> sockets = _server.findChildren<QTcpSocket *>();
    for (QTcpSocket *socket : sockets) {
        // As the system does for a process that is killed: what was sent still arrives.
        socket->flush();
        socket->disconnectFromHost();
    }
}

void StubService::comeBack() {
    if (!_server.isListening() && !_server.listen(QHostAddress::LocalHost, _port))
        qFatal("stub service: its port is taken");
}

int StubService::releaseHeld() {
    int answered = 0;
    for (const auto &[socket, bytes] : std::exchange(_held, {})) {
        if (!socket || socket->state() != QAbstractSocket::ConnectedState)
            continue;
        socket->write(bytes);
        socket->disconnectFromHost();
        ++answered;
    }
    return answered;
}

} // namespace murvo::test
