// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace murvo::service {

/// A thread for long work of which only the newest piece counts: a new piece puts an end to the one before.
///
/// The calls belong to any thread, the work runs on the one thread of this object. The destructor cancels and
/// waits until the work has seen it.
class NewestOnly {
  public:
    /// Work looks at the flag often and ends soon after it is set. It must not throw.
    using Work = std::function<void(const std::atomic<bool> &isCancelled)>;

    /// Whether others come first for processor and disk. Not for work that holds what others wait for.
    enum class Priority { GivesWay, AsOthers };

    explicit NewestOnly(Priority priority = Priority::GivesWay);
    ~NewestOnly();
    NewestOnly(const NewestOnly &) = delete;
    NewestOnly &operator=(const NewestOnly &) = delete;

    /// Returns at once.
    void start(Work work);
    /// Ends what runs, and begins nothing.
    void cancel();
    /// Waits for what runs and what comes next. Not from the work itself.
    void waitUntilIdle();

  private:
    void run(Priority priority);

    std::mutex _mutex;
    std::condition_variable _changed;
    Work _next;
    std::shared_ptr<std::atomic<bool>> _running; // the flag of the piece that runs; null when none does
    bool _isEnding = false;
    std::thread _thread; // last: it uses all of these
};

} // namespace murvo::service
