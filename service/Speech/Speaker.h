// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Speech/Espeak.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace murvo::service {

enum class SpeechProblem {
    None,
    Busy,   ///< too many are waiting
    Ending, ///< the service stops
    Failed, ///< the synthesizer or its voice is not there
};

template<typename Result>
struct Spoken {
    SpeechProblem problem = SpeechProblem::None;
    Result result{};
};

/// What speaks for the service: one thread that alone uses the synthesizer, one request after the other.
///
/// Any thread may ask and waits for its answer; of too many that wait the last is turned away, so that a
/// flood cannot hold all threads of the server. It knows no HTTP. close() must be called before the server
/// stops.
class Speaker {
  public:
    Speaker();
    ~Speaker();
    Speaker(const Speaker &) = delete;
    Speaker &operator=(const Speaker &) = delete;

    /// A WAV file. The text is one that isSpeakable().
    [[nodiscard]] Spoken<QByteArray> sound(const QString &text, const char *voice, Pace pace);
    [[nodiscard]] Spoken<QString> pronunciation(const QString &text, const char *voice);

    /// Gives up what is being spoken and what waits, and takes nothing any more.
    void close();

  private:
    struct Request {
        std::function<bool()> speak; ///< false: it could not
        SpeechProblem problem = SpeechProblem::None;
        bool isAnswered = false;
    };

    [[nodiscard]] SpeechProblem speak(std::function<bool()> work);
    void run();

    std::mutex _mutex;
    std::condition_variable _changed;
    std::deque<Request *> _waiting; // each lives on the stack of the thread that waits for it
    std::atomic<bool> _isClosed{false};
    std::thread _thread; // last: it uses all of these
};

} // namespace murvo::service
