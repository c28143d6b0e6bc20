// SPDX-License-Identifier: GPL-3.0-or-later
#include "FilmHandover.h"

#include <QSet>

#include <condition_variable>
#include <mutex>

namespace murvo::service {

struct FilmHandover::State {
    std::mutex mutex;
    std::condition_variable changed;
    QSet<quint64> waiting;
    quint64 last = 0;
    bool isClosed = false;
};

FilmHandover::FilmHandover(Program program, std::chrono::milliseconds longestWait)
    : _program(std::move(program))
    , _longestWait(longestWait)
    , _state(std::make_shared<State>()) {}

FilmHandover::~FilmHandover() = default;

bool FilmHandover::hand(const QString &path) {
    if (!_program)
        return false;
    std::unique_lock lock(_state->mutex);
    if (_state->isClosed)
        return false;
    const quint64 number = ++_state->last;
    _state->waiting.insert(number);
    lock.unlock();
    _program(path, [state = _state, number] {
        const std::lock_guard taking(state->mutex);
        const bool isWanted = !state->isClosed && state->waiting.remove(number);
        state->changed.notify_all();
        return isWanted;
    });
    lock.lock();
    _state->changed.wait_for(lock, _longestWait,
                             [&] { return _state->isClosed || !_state->waiting.contains(number); });
    return !_state->waiting.remove(number);
}

void FilmHandover::close() {
    const std::lock_guard lock(_state->mutex);
    _state->isClosed = true;
    _state->changed.notify_all();
}

} // namespace murvo::service
