// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Platform/TaskQueue.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <limits>

namespace murvo {

TaskQueue::TaskQueue() = default;

TaskQueue::TaskQueue(const QString &name)
    : _context(new QObject) {
    _thread.setObjectName(name);
    _context->moveToThread(&_thread);
    _thread.start();
}

TaskQueue::~TaskQueue() {
    if (!_context)
        return;
    // Deleting the context on its thread drops the tasks that still wait for it.
    QMetaObject::invokeMethod(
        _context, [context = _context] { delete context; }, Qt::BlockingQueuedConnection);
    _thread.quit();
    _thread.wait();
}

TaskQueue &TaskQueue::mainQueue() {
    static TaskQueue queue;
    return queue;
}

void TaskQueue::async(Task task) {
    QMetaObject::invokeMethod(context(), std::move(task), Qt::QueuedConnection);
}

void TaskQueue::after(std::chrono::nanoseconds delay, std::chrono::nanoseconds leeway, Task task) {
    using std::chrono::milliseconds;
    constexpr milliseconds longest(std::numeric_limits<int>::max());
    const milliseconds wait = std::min(std::chrono::ceil<milliseconds>(delay), longest);
    // Qt's coarse timers may be off by a twentieth.
    const Qt::TimerType type =
        leeway >= delay / 20 && leeway.count() > 0 ? Qt::CoarseTimer : Qt::PreciseTimer;
    async([context = context(), wait, type, task = std::move(task)]() mutable {
        QTimer::singleShot(wait, type, context, std::move(task));
    });
}

QObject *TaskQueue::context() const {
    return _context ? _context : QCoreApplication::instance();
}

} // namespace murvo
