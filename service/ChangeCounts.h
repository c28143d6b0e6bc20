// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace murvo::service {

/// Counts the changes of things that pages wait for, by a key of the thing. It knows none of them: all that a
/// page needs is that there is something new. Any thread.
class ChangeCounts {
  public:
    void announce(qint32 key = 0);

    [[nodiscard]] qint32 count(qint32 key = 0) const;

    /// Blocks until the count differs from known, for the limit at most; returns the count.
    [[nodiscard]] qint32 waitForOtherThan(qint32 known, std::chrono::milliseconds limit, qint32 key = 0);

    /// Ends all waits, and lets none begin any more.
    void close();

  private:
    mutable std::mutex _mutex;
    std::condition_variable _changed;
    QHash<qint32, qint32> _counts;
    bool _isClosed = false;
};

} // namespace murvo::service
