// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Platform/SingleInstance.h"

#include "app/Platform/Log.h"

#include <QDataStream>
#include <QDeadlineTimer>
#include <QDir>
#include <QLocalSocket>
#include <QThread>
#include <QTimer>

#include <cerrno>
#include <sys/file.h>

namespace murvo {

using namespace std::chrono_literals;

namespace {
constexpr QDataStream::Version streamVersion = QDataStream::Qt_6_4;
constexpr qint64 longestMessageBytes = 64LL * 1024; // with its length in front
constexpr char taken = '+';
constexpr auto senderLimit = 5s;
constexpr unsigned long pauseBetweenTriesMs = 50;
} // namespace

SingleInstance::SingleInstance(const QString &folder, const QString &name)
    : _hasFolder(!folder.isEmpty())
    , _lock(QDir(folder).filePath(name + QStringLiteral(".lock")))
    , _socketPath(QDir(folder).filePath(name + QStringLiteral(".socket"))) {
    _server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&_server, &QLocalServer::newConnection, this, &SingleInstance::takeConnection);
}

SingleInstance::Claim SingleInstance::claim(const QByteArray &message, std::chrono::milliseconds limit) {
    if (!_hasFolder || !_lock.open(QIODevice::ReadWrite)) {
        qCWarning(logApp).noquote() << "Cannot tell whether Murvo runs already:"
                                    << (_hasFolder ? _lock.errorString()
                                                   : QStringLiteral("no runtime folder"));
        return Claim::First;
    }
    const QDeadlineTimer deadline(limit);
    for (;;) {
        if (tryLock())
            return Claim::First;
        if (handOver(message, std::chrono::milliseconds(deadline.remainingTime())))
            return Claim::HandedOver;
        if (deadline.hasExpired())
            return Claim::Unanswered;
        QThread::msleep(pauseBetweenTriesMs);
    }
}

bool SingleInstance::tryLock() {
    return ::flock(_lock.handle(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

bool SingleInstance::handOver(const QByteArray &message, std::chrono::milliseconds limit) const {
    const QDeadlineTimer deadline(limit);
    QLocalSocket socket;
    socket.connectToServer(_socketPath);
    if (!socket.waitForConnected(static_cast<int>(deadline.remainingTime())))
        return false;
    QDataStream stream(&socket);
    stream.setVersion(streamVersion);
    stream << message;
    char answer = 0;
    return socket.waitForBytesWritten(static_cast<int>(deadline.remainingTime())) &&
           socket.waitForReadyRead(static_cast<int>(deadline.remainingTime())) && socket.getChar(&answer) &&
           answer == taken;
}

void SingleInstance::giveUp() {
    _lock.close();
}

void SingleInstance::listen() {
    if (!_lock.isOpen())
        return;
    QLocalServer::removeServer(_socketPath); // of one that has crashed
    if (!_server.listen(_socketPath))
        qCWarning(logApp) << "Later starts of Murvo cannot be taken:" << _server.errorString();
}

void SingleInstance::takeConnection() {
    while (QLocalSocket *sender = _server.nextPendingConnection()) {
        sender->setReadBufferSize(longestMessageBytes);
        connect(sender, &QLocalSocket::disconnected, sender, &QObject::deleteLater);
        QTimer::singleShot(senderLimit, sender, &QLocalSocket::abort);
        const auto read = [this, sender] {
            QDataStream stream(sender);
            stream.setVersion(streamVersion);
            stream.startTransaction();
            QByteArray message;
            stream >> message;
            if (!stream.commitTransaction()) {
                if (sender->bytesAvailable() >= longestMessageBytes)
                    sender->abort();
                return;
            }
            sender->disconnect(this); // one message each
            Q_EMIT received(message);
            sender->putChar(taken);
            sender->disconnectFromServer();
        };
        connect(sender, &QLocalSocket::readyRead, this, read);
        if (sender->bytesAvailable() > 0)
            read();
    }
}

} // namespace murvo
