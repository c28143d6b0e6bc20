// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QEventLoop>
#include <QTest>
#include <QTimer>

#include <chrono>

namespace murvo::test {

// Programs under a sanitizer take several times as long, most under the one for threads.
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr std::chrono::seconds usualLimit{40};
#else
constexpr std::chrono::seconds usualLimit{10};
#endif

/// Runs the event loop until the predicate holds; false when it does not within the limit. The loop never
/// sleeps, as QTest's does: the web engine lives in it and would crawl.
template<typename Predicate>
[[nodiscard]] bool waitUntil(Predicate predicate, std::chrono::milliseconds limit = usualLimit) {
    using namespace std::chrono_literals;
    if (predicate())
        return true;
    QEventLoop loop;
    bool isFulfilled = false;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        poll.stop(); // the predicate may run the event loop itself
        isFulfilled = predicate();
        if (isFulfilled)
            loop.quit();
        else
            poll.start();
    });
    poll.start(5ms);
    QTimer::singleShot(limit, &loop, &QEventLoop::quit);
    loop.exec();
    return isFulfilled || predicate();
}

/// Lets everything that is already under way in the event loop happen, for checks that nothing more comes.
/// Waits the whole time.
inline void letPass(std::chrono::milliseconds time) {
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace murvo::test
