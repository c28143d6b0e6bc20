// SPDX-License-Identifier: GPL-3.0-or-later
#include "NewestOnly.h"

#include "GiveWay.h"

#include <utility>

namespace murvo::service {

NewestOnly::NewestOnly(Priority priority)
    : _thread([this, priority] { run(priority); }) {}

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

void NewestOnly::waitUntilIdle() {
    std::unique_lock lock(_mutex);
    _changed.wait(lock, [this] { return !_running && !_next; });
}

void NewestOnly::run(Priority priority) {
    if (priority == Priority::GivesWay)
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
        _changed.notify_all();
    }
}

} // namespace murvo::service
