// SPDX-License-Identifier: GPL-3.0-or-later
#include "NewestOnly.h"

#include <utility>

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace murvo::service {

namespace {

// The film that plays reads the same disk: it comes first. Without these the work is done all the same.
void giveWayToOthers() {
    constexpr int ofThread = 1;                     // IOPRIO_WHO_PROCESS: this thread
    constexpr int lowestOfBestEffort = 2 << 13 | 7; // class 2 of three, last of its eight levels
    constexpr int nicer = 10;
    std::ignore = ::syscall(SYS_ioprio_set, ofThread, 0, lowestOfBestEffort);
    std::ignore = ::setpriority(PRIO_PROCESS, static_cast<id_t>(::syscall(SYS_gettid)), nicer);
}

} // namespace

NewestOnly::NewestOnly()
    : _thread([this] { run(); }) {}

NewestOnly::~NewestOnly() {
    {
        const std::lock_guard lock(_mutex);
        _isEnding = true;
        _next = nullptr;
        if (_running)
            *_running = true;
    }
    _changed.notify_all();
    _thread.join();
}

void NewestOnly::start(Work work) {
    const std::lock_guard lock(_mutex);
    if (_running)
        *_running = true;
    _next = std::move(work);
    _changed.notify_all();
}

void NewestOnly::cancel() {
    start(nullptr);
}

void NewestOnly::run() {
    giveWayToOthers();
    std::unique_lock lock(_mutex);
    for (;;) {
        _changed.wait(lock, [this] { return _next || _isEnding; });
        if (_isEnding)
            return;
        const Work work = std::exchange(_next, nullptr);
        const auto isCancelled = std::make_shared<std::atomic<bool>>(false);
        _running = isCancelled;
        lock.unlock();
        work(*isCancelled);
        lock.lock();
        _running = nullptr;
    }
}

} // namespace murvo::service
