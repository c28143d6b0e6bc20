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
// The order: the first greets, the other sends the time of its own start and its message, the first answers.
// One that is not greeted keeps its message to itself.
constexpr char greeting = '?';
constexpr char taken = '+';
constexpr auto senderLimit = 5s;
constexpr unsigned long pauseBetweenTriesMs = 50;

/// When this process was started, in clock ticks since the machine was; 0 where that cannot be told.
quint64 processStart() {
    QFile file(QStringLiteral("/proc/self/stat"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray stat = file.readAll();
    constexpr qsizetype startField = 19; // counted after the program's name, which is in parentheses
    return stat.mid(stat.lastIndexOf(')') + 2).split(' ').value(startField).toULongLong();
}

bool receive(QLocalSocket &socket, char expected, const QDeadlineTimer &deadline) {
    char byte = 0;
    return (socket.bytesAvailable() > 0 ||
            socket.waitForReadyRead(static_cast<int>(deadline.remainingTime()))) &&
           socket.getChar(&byte) && byte == expected;
}

} // namespace

SingleInstance::SingleInstance(const QString &folder, const QString &name)
    : _hasFolder(!folder.isEmpty())
    , _lock(QDir(folder).filePath(name + QStringLiteral(".lock")))
    , _socketPath(QDir(folder).filePath(name + QStringLiteral(".socket")))
    , _latestStart(0) {
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
        if (tryLock()) {
            _latestStart = message.isEmpty() ? 0 : processStart();
            return Claim::First;
        }
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
    if (!receive(socket, greeting, deadline))
        return false;
    QDataStream stream(&socket);
    stream.setVersion(streamVersion);
    stream << processStart() << message;
    return socket.waitForBytesWritten(static_cast<int>(deadline.remainingTime())) &&
           receive(socket, taken, deadline);
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
            quint64 start = 0;
            QByteArray message;
            stream >> start >> message;
            if (!stream.commitTransaction()) {
                if (sender->bytesAvailable() >= longestMessageBytes)
                    sender->abort();
                return;
            }
            sender->disconnect(this); // one message each
            if (start < _latestStart)
                message.clear();
            if (!message.isEmpty())
                _latestStart = start;
            Q_EMIT received(message);
            sender->putChar(taken);
            sender->disconnectFromServer();
        };
        connect(sender, &QLocalSocket::readyRead, this, read);
        sender->putChar(greeting);
    }
}

} // namespace murvo
