// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/Promise.h"

#include "app/Classes/Deferred.h"
#include "app/Platform/TaskQueue.h"

namespace murvo {

Promise::Promise(TaskQueue *queue)
    : _queue(queue) {}

Promise::Ptr Promise::resolved(const QVariant &value) {
    return Deferred::deferred()->resolve(value);
}

Promise::Ptr Promise::rejected(const PromiseError &error) {
    return Deferred::deferred()->reject(error);
}

Promise::Ptr Promise::when(ResultCallback callback) {
    bindOrCallBlock([callback = std::move(callback)](const Promise &settled) {
        if (settled.isResolved())
            callback(settled.result());
    });
    return shared_from_this();
}

Promise::Ptr Promise::failed(ReasonCallback callback) {
    bindOrCallBlock([callback = std::move(callback)](const Promise &settled) {
        if (settled.isRejected())
            callback(settled.reason());
    });
    return shared_from_this();
}

Promise::Ptr Promise::any(Callback callback) {
    bindOrCallBlock([callback = std::move(callback)](const Promise &) { callback(); });
    return shared_from_this();
}

Promise::Ptr Promise::when(ResultCallback resolved, ReasonCallback failed) {
    when(std::move(resolved));
    return this->failed(std::move(failed));
}

Promise::Ptr Promise::when(ResultCallback resolved, ReasonCallback failed, Callback any) {
    when(std::move(resolved), std::move(failed));
    return this->any(std::move(any));
}

Promise::Ptr Promise::on(TaskQueue &queue) {
    const Deferred::Ptr other = Deferred::initWithQueue(&queue);
    chainTo(other);
    return other;
}

Promise::Ptr Promise::onMainQueue() {
    return on(TaskQueue::mainQueue());
}

bool Promise::isResolved() const {
    return state() == PromiseStateResolved;
}

bool Promise::isRejected() const {
    return state() == PromiseStateRejected;
}

PromiseState Promise::state() const {
    const std::lock_guard guard(_stateLock);
    return _state;
}

QVariant Promise::result() const {
    const std::lock_guard guard(_valueLock);
    return _result;
}

PromiseError Promise::reason() const {
    const std::lock_guard guard(_valueLock);
    return _reason;
}

bool Promise::bindOrCallBlock(Binding binding) {
    bool isKept = false;
    {
        const std::lock_guard guard(_stateLock);
        if (_state == PromiseStatePending) {
            _callbackBindings.push_back(binding);
            isKept = true;
        }
    }
    if (!isKept)
        executeBlock(std::move(binding));
    return isKept;
}

void Promise::executeBlock(Binding binding) {
    if (_queue)
        _queue->async([self = shared_from_this(), binding = std::move(binding)] { binding(*self); });
    else
        binding(*this);
}

void Promise::chainTo(const std::shared_ptr<Deferred> &deferred) {
    when([deferred](const QVariant &result) { deferred->resolve(result); },
         [deferred](const PromiseError &reason) { deferred->reject(reason); });
}

void Promise::storeResult(const QVariant &value) {
    const std::lock_guard guard(_valueLock);
    _result = value;
}

void Promise::storeReason(const PromiseError &error) {
    const std::lock_guard guard(_valueLock);
    _reason = error;
}

void Promise::transitionToState(PromiseState state) {
    std::vector<Binding> bindings;
    {
        const std::lock_guard guard(_stateLock);
        if (_state != PromiseStatePending)
            return;
        _state = state;
        bindings.swap(_callbackBindings);
    }
    for (Binding &binding : bindings)
        executeBlock(std::move(binding));
}

} // namespace murvo
