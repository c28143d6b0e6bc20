// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QThread>

#include <chrono>
#include <functional>

namespace murvo {

/// A serial queue of tasks: they run one after another, in order, on one thread with an event loop. Any
/// thread may add tasks. The destructor lets the running task end, drops the rest and waits for the thread.
class TaskQueue {
  public:
    using Task = std::function<void()>;

    /// A queue with a thread of its own. The name is the thread's, for debuggers.
    explicit TaskQueue(const QString &name);
    ~TaskQueue();
    TaskQueue(const TaskQueue &) = delete;
    TaskQueue &operator=(const TaskQueue &) = delete;

    /// The queue of the main thread. Needs a QCoreApplication.
    static TaskQueue &mainQueue();

    void async(Task task);
    /// Adds the task after the delay (24 days at most), or up to leeway later. It is dropped with the queue.
    void after(std::chrono::nanoseconds delay, std::chrono::nanoseconds leeway, Task task);

    /// Lives on the queue's thread; objects made there may be its children and die with the queue.
    [[nodiscard]] QObject *context() const;

  private:
    TaskQueue();

    QObject *_context = nullptr; // deleted on the queue's own thread; none for the main queue
    QThread _thread;
};

} // namespace murvo
