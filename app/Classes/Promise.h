// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QVariant>

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace murvo {

class Deferred;
class TaskQueue;

/// Why a promise was rejected.
struct PromiseError {
    QString domain;
    int code = 0;
};

enum PromiseState : qint32 {
    PromiseStatePending = 0,
    PromiseStateRejected = 1,
    PromiseStateResolved = 2,
};

/// The read side of one asynchronous result: callbacks for success, failure or either. Without a queue they
/// run on the settling thread (or at once on the registering one when the promise is already settled); with a
/// queue they are added to it. They run in the order of their registration, and never under the promise's
/// lock.
///
/// Any thread may use it. A promise lives until it has settled and its callbacks have run, or until nobody
/// who could settle it is left. Every registering operation returns the promise itself, so that calls can be
/// strung together.
class Promise : public std::enable_shared_from_this<Promise> {
  public:
    using Ptr = std::shared_ptr<Promise>;
    using ResultCallback = std::function<void(const QVariant &result)>;
    using ReasonCallback = std::function<void(const PromiseError &reason)>;
    using Callback = std::function<void()>;
    using Step = std::function<Ptr(const QVariant &previous)>;
    using Transform = std::function<QVariant(const QVariant &result)>;

    virtual ~Promise() = default;
    Promise(const Promise &) = delete;
    Promise &operator=(const Promise &) = delete;

    /// Already settled promises without a queue.
    [[nodiscard]] static Ptr resolved(const QVariant &value);
    [[nodiscard]] static Ptr rejected(const PromiseError &error);

    Ptr when(ResultCallback callback);
    Ptr failed(ReasonCallback callback);
    Ptr any(Callback callback);
    Ptr when(ResultCallback resolved, ReasonCallback failed);
    Ptr when(ResultCallback resolved, ReasonCallback failed, Callback any);

    /// A new promise with the same outcome, whose callbacks run on queue. The queue must outlive it.
    [[nodiscard]] Ptr on(TaskQueue &queue);
    [[nodiscard]] Ptr onMainQueue();

    // New promises out of existing ones (PromiseCombinators.cpp), without a queue unless named. Late
    // settlements of what they are made of show in their stored result or reason, too.

    /// Runs the steps one after another, the first at once with an invalid value, each with the result of the
    /// one before. Resolved with the last result, or rejected with the first failure, which ends it; an empty
    /// function among the steps ends them. A step that returns null stalls it for good.
    [[nodiscard]] static Ptr chain(std::vector<Step> steps);
    /// The first success, or the last failure when all fail. Pending for ever without promises. The promises
    /// of this and the next must call back on one thread.
    [[nodiscard]] static Ptr or_(const std::vector<Ptr> &promises);
    /// The last success when all succeed, or the first failure. Pending for ever without promises.
    [[nodiscard]] static Ptr and_(const std::vector<Ptr> &promises);
    /// The same outcome on the receiver's queue, or rejected with domain "Timeout", code 100, when there is
    /// none after the interval. The timer runs on that queue, the main one in want of it; it fires in any
    /// case and so leaves its error as the reason of a promise that was resolved in time.
    [[nodiscard]] Ptr timeout(double intervalSeconds);
    /// The timer may be late by leewayNanoseconds.
    [[nodiscard]] Ptr timeout(double intervalSeconds, double leewayNanoseconds);
    /// The outcome with its value changed; transform runs where the receiver's callbacks run.
    [[nodiscard]] Ptr transform(Transform transform);
    /// Blocks the thread until the promise is resolved, for limitSeconds at most, and returns result(). A
    /// rejection wakes nobody, and a wait on the thread that the callbacks need lasts for the whole limit.
    [[nodiscard]] QVariant wait(double limitSeconds);

    [[nodiscard]] bool isResolved() const;
    [[nodiscard]] bool isRejected() const;

    /// The latest value given to resolve() or reject(), even one that came too late to settle the promise;
    /// invalid or empty before.
    [[nodiscard]] QVariant result() const;
    [[nodiscard]] PromiseError reason() const;

  protected:
    explicit Promise(TaskQueue *queue);

    /// A registered callback with its test of the outcome, given the promise when it runs. It holds no
    /// reference to the promise itself: one that is never settled would otherwise keep itself alive for ever.
    using Binding = std::function<void(const Promise &settled)>;

    /// Runs the binding now if the promise is settled, else keeps it. True when it was kept.
    bool bindOrCallBlock(Binding binding);
    void executeBlock(Binding binding);
    void chainTo(const std::shared_ptr<Deferred> &deferred);

    void storeResult(const QVariant &value);
    void storeReason(const PromiseError &error);
    /// The caller holds a reference to the promise: a callback may drop all others.
    void transitionToState(PromiseState state);

  private:
    [[nodiscard]] PromiseState state() const;

    std::vector<Binding> _callbackBindings; // guarded by _stateLock, as _state is
    TaskQueue *const _queue;
    mutable std::mutex _stateLock;
    PromiseState _state = PromiseStatePending;

    mutable std::mutex _valueLock; // makes each access to the two values one step
    QVariant _result;
    PromiseError _reason;
};

} // namespace murvo
