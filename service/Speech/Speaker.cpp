// SPDX-License-Identifier: GPL-3.0-or-later
#include "Speech/Speaker.h"

#include <utility>

namespace murvo::service {

namespace {

// Each that waits holds one of the server's threads (32); a page asks for one sound at a time.
constexpr std::size_t mostWaiting = 8;

} // namespace

Speaker::Speaker()
    : _thread([this] { run(); }) {}

Speaker::~Speaker() {
    close();
    _thread.join();
}

void Speaker::close() {
    const std::lock_guard lock(_mutex);
    _isClosed = true;
    _changed.notify_all();
}

Spoken<QByteArray> Speaker::sound(const QString &text, const char *voice, Pace pace) {
    Spoken<QByteArray> spoken;
    spoken.problem = speak([&] {
        auto wav = Espeak::sound(text, voice, pace, _isClosed);
        spoken.result = std::move(wav).value_or(QByteArray());
        return !spoken.result.isEmpty();
    });
    return spoken;
}

Spoken<QString> Speaker::pronunciation(const QString &text, const char *voice) {
    Spoken<QString> spoken;
    spoken.problem = speak([&] {
        auto ipa = Espeak::pronunciation(text, voice);
        spoken.result = std::move(ipa).value_or(QString());
        return !spoken.result.isNull();
    });
    return spoken;
}

SpeechProblem Speaker::speak(std::function<bool()> work) {
    Request request{std::move(work)};
    std::unique_lock lock(_mutex);
    if (_isClosed)
        return SpeechProblem::Ending;
    if (_waiting.size() >= mostWaiting)
        return SpeechProblem::Busy;
    _waiting.push_back(&request);
    _changed.notify_all();
    _changed.wait(lock, [&request] { return request.isAnswered; });
    return request.problem;
}

void Speaker::run() {
    std::unique_lock lock(_mutex);
    for (;;) {
        _changed.wait(lock, [this] { return _isClosed || !_waiting.empty(); });
        if (_waiting.empty())
            return;
        Request *request = _waiting.front();
        if (!_isClosed) {
            lock.unlock();
            bool isSpoken = false;
            try {
                isSpoken = request->speak();
            } catch (...) { // no memory: told as any other failure
                isSpoken = false;
            }
            lock.lock();
            request->problem = isSpoken ? SpeechProblem::None : SpeechProblem::Failed;
        }
        if (_isClosed)
            request->problem = SpeechProblem::Ending;
        _waiting.pop_front();
        request->isAnswered = true;
        _changed.notify_all();
    }
}

} // namespace murvo::service
