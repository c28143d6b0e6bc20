// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace murvo::service {

/// Counts the films that the player has been handed and that wait there for the home page. It knows none of
/// them: all that the page needs is that there is a new one. Any thread.
class PendingFilms {
  public:
    void announce();

    [[nodiscard]] int count() const;

    /// Blocks until the count differs from known, for the limit at most; returns the count.
    [[nodiscard]] int waitForOtherThan(int known, std::chrono::milliseconds limit);

    /// Ends all waits, and lets none begin any more.
    void close();

  private:
    mutable std::mutex _mutex;
    std::condition_variable _changed;
    int _count = 0;
    bool _isClosed = false;
};

} // namespace murvo::service
