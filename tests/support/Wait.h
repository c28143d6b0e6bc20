// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTest>

#include <chrono>

namespace murvo::test {

/// Runs the event loop until the predicate holds; false when it does not within the limit.
template<typename Predicate>
[[nodiscard]] bool waitUntil(Predicate predicate,
                             std::chrono::milliseconds limit = std::chrono::seconds(10)) {
    return QTest::qWaitFor(predicate, static_cast<int>(limit.count()));
}

/// Lets everything that is already under way in the event loop happen, for checks that nothing more comes.
/// Waits the whole time.
inline void letPass(std::chrono::milliseconds time) {
    QTest::qWait(static_cast<int>(time.count()));
}

} // namespace murvo::test
