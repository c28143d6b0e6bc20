// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Classes/Promise.h"

namespace murvo {

/// A promise that its owner settles. The first settlement wins and runs the callbacks; a later one only
/// replaces the stored result or reason.
class Deferred : public Promise {
  public:
    using Ptr = std::shared_ptr<Deferred>;

    /// A pending deferred without a queue.
    [[nodiscard]] static Ptr deferred();

    /// A pending deferred whose callbacks run on queue; the queue must outlive it.
    [[nodiscard]] static Ptr initWithQueue(TaskQueue *queue);

    /// The deferred itself, as the side to read.
    [[nodiscard]] Promise::Ptr promise();

    Promise::Ptr resolve(const QVariant &value);
    Promise::Ptr reject(const PromiseError &error);

  private:
    using Promise::Promise;
};

} // namespace murvo
