// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Platform/TerminationSignals.h"

#include <QSocketNotifier>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace murvo {

namespace {

constexpr std::array handledSignals = {SIGTERM, SIGINT, SIGHUP};

int writingSocket = -1; // a signal handler can reach nothing but a global

void wakeMainThread(int) {
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(writingSocket, &byte, 1);
}

} // namespace

TerminationSignals::TerminationSignals(QObject *parent)
    : QObject(parent) {
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, _sockets.data()) != 0)
        return; // the default action of the signals stays
    writingSocket = _sockets[0];
    auto *notifier = new QSocketNotifier(_sockets[1], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this, notifier] {
        notifier->setEnabled(false);
        Q_EMIT received();
    });
    struct sigaction action {};
    action.sa_handler = wakeMainThread;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int number : handledSignals)
        ::sigaction(number, &action, nullptr);
}

TerminationSignals::~TerminationSignals() {
    if (writingSocket < 0)
        return;
    for (const int number : handledSignals)
        std::signal(number, SIG_DFL);
    writingSocket = -1;
    for (const int socket : _sockets)
        ::close(socket);
}

} // namespace murvo
