// SPDX-License-Identifier: GPL-3.0-or-later
// For builds with the thread sanitizer only: what it must be told about Qt, which Debian builds without it.
// The functions here take the place of the libraries' own in the program that they are linked to, and call
// them.

#include <QObject>

#include <cstdarg>

#include <dlfcn.h>
#include <sanitizer/tsan_interface.h>
#include <sys/types.h>

namespace {

/// A task on its way through Qt's event queue, whose order the sanitizer cannot see: it is told that what was
/// done before a task was handed over comes before the task, and the task before the one who waits for its
/// end. Qt owns it, as any other.
class HandedOver : public QtPrivate::QSlotObjectBase {
  public:
    explicit HandedOver(QtPrivate::QSlotObjectBase *task)
        : QSlotObjectBase(&run)
        , _task(task) {}

  private:
    static void run(int what, QSlotObjectBase *self, QObject *receiver, void **arguments, bool *) {
        __tsan_acquire(self);
        auto *that = static_cast<HandedOver *>(self);
        if (what == Call) {
            that->_task->call(receiver, arguments);
            __tsan_release(self);
        } else if (what == Destroy) {
            that->_task->destroyIfLastRef();
            delete that;
        }
    }

    QSlotObjectBase *_task;
};

using InvokeMethod = bool (*)(QObject *, QtPrivate::QSlotObjectBase *, Qt::ConnectionType, void *);
constexpr auto invokeMethodSymbol =
    "_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionTypeEPv";

} // namespace

bool QMetaObject::invokeMethodImpl(QObject *object, QtPrivate::QSlotObjectBase *slot, Qt::ConnectionType type,
                                   void *result) {
    static const auto qtsOwn = reinterpret_cast<InvokeMethod>(::dlsym(RTLD_NEXT, invokeMethodSymbol));
    auto *task = new HandedOver(slot);
    __tsan_release(task);
    if (type != Qt::BlockingQueuedConnection)
        return qtsOwn(object, task, type, result); // the task may be gone by now
    task->ref();
    const bool done = qtsOwn(object, task, type, result);
    __tsan_acquire(task);
    task->destroyIfLastRef();
    return done;
}

extern "C" int __clone(int (*run)(void *), void *stack, int flags, void *argument, ...); // NOLINT

// Qt starts processes with it. The child has the program's own memory until it runs another program; the
// sanitizer takes that for a fork, and would look away from then on, or end the program.
extern "C" int clone(int (*run)(void *), void *stack, int flags, void *argument, ...) {
    std::va_list more;
    va_start(more, argument);
    auto *parentId = va_arg(more, pid_t *);
    auto *threadArea = va_arg(more, void *);
    auto *childId = va_arg(more, pid_t *);
    va_end(more);
    return __clone(run, stack, flags, argument, parentId, threadArea, childId);
}
