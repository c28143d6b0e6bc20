// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Platform/TaskQueue.h"

#include <QCoreApplication>

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

QObject *TaskQueue::context() const {
    return _context ? _context : QCoreApplication::instance();
}

} // namespace murvo
