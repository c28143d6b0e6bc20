// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QFile>
#include <QLocalServer>
#include <QObject>

#include <chrono>

namespace murvo {

/// Lets one process of the user run under a name. The first to claim it has it until it ends, in whatever
/// way: the system gives the lock back. Later ones hand a message over to it, through a socket that only the
/// user can open. Main thread only; it knows nothing of what the messages mean.
class SingleInstance : public QObject {
    Q_OBJECT

  public:
    enum class Claim {
        First,      ///< the name is this process's; it should call listen() when it can take messages
        HandedOver, ///< the process that has the name has taken the message
        Unanswered, ///< there is one, and it did not take the message within the limit
    };

    /// Lock and socket lie in folder, which must be the user's alone; empty when there is none. Name is a
    /// file name.
    SingleInstance(const QString &folder, const QString &name);

    /// Blocks, for the limit at most. While the process that has the name starts or ends, it is tried again;
    /// so the message is taken by that one, or the name becomes this one's. Where no lock can be made every
    /// process is the first.
    [[nodiscard]] Claim claim(const QByteArray &message, std::chrono::milliseconds limit);

    /// Leaves the name to the next one that claims it. For the first, as long as it does not listen.
    void giveUp();

    /// From now on received() comes for each later process, in the event loop. For the first only.
    void listen();

  Q_SIGNALS:
    /// The message is empty when there is none, or when a process that was started later has been quicker.
    void received(const QByteArray &message);

  private:
    [[nodiscard]] bool tryLock();
    [[nodiscard]] bool handOver(const QByteArray &message, std::chrono::milliseconds limit) const;
    void takeConnection();

    const bool _hasFolder;
    QFile _lock; // closed at the end, which unlocks it
    const QString _socketPath;
    quint64 _latestStart; // of the processes that had a message
    QLocalServer _server;
};

} // namespace murvo
