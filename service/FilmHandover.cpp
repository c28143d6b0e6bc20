// SPDX-License-Identifier: GPL-3.0-or-later
#include "FilmHandover.h"

#include <QSet>

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace murvo::service {

namespace {

// The program is busy for that long at worst, as with the end of another film.
constexpr std::chrono::seconds longestWait{10};

} // namespace

struct FilmHandover::State {
    std::mutex mutex;
    std::condition_variable changed;
    QSet<quint64> waiting;
    quint64 last = 0;
    bool isClosed = false;
};

FilmHandover::FilmHandover(Program program)
    : _program(std::move(program))
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
        state->waiting.remove(number);
        state->changed.notify_all();
    });
    lock.lock();
    const bool isTaken = _state->changed.wait_for(
        lock, longestWait, [&] { return _state->isClosed || !_state->waiting.contains(number); });
    return !_state->waiting.remove(number) && isTaken;
}

void FilmHandover::close() {
    const std::lock_guard lock(_state->mutex);
    _state->isClosed = true;
    _state->changed.notify_all();
}

} // namespace murvo::service
