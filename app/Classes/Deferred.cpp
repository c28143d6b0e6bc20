// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/Deferred.h"

namespace murvo {

Deferred::Ptr Deferred::deferred() {
    return initWithQueue(nullptr);
}

Deferred::Ptr Deferred::initWithQueue(TaskQueue *queue) {
    return Ptr(new Deferred(queue));
}

Promise::Ptr Deferred::promise() {
    return shared_from_this();
}

Promise::Ptr Deferred::resolve(const QVariant &value) {
    Promise::Ptr self = promise(); // a callback may drop the last other reference
    storeResult(value);
    transitionToState(PromiseStateResolved);
    return self;
}

Promise::Ptr Deferred::reject(const PromiseError &error) {
    Promise::Ptr self = promise();
    storeReason(error);
    transitionToState(PromiseStateRejected);
    return self;
}

} // namespace murvo
