// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/Deferred.h"
#include "app/Platform/TaskQueue.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <limits>

namespace murvo {

namespace {

using namespace std::chrono_literals;

/// The rest of a chain of steps and its outcome; held by the callbacks of the step under way.
struct Chain {
    std::deque<Promise::Step> steps;
    Deferred::Ptr outcome = Deferred::deferred();

    static void next(const std::shared_ptr<Chain> &chain, const QVariant &value) {
        if (chain->steps.empty()) {
            chain->outcome->resolve(value);
            return;
        }
        const Promise::Step step = std::move(chain->steps.front());
        chain->steps.pop_front();
        const Promise::Ptr promise = step(value);
        if (!promise)
            return;
        promise->when([chain](const QVariant &result) { next(chain, result); },
                      [chain](const PromiseError &reason) { chain->outcome->reject(reason); });
    }
};

/// Counts settlements up to the number of promises. No lock: the callbacks run on one thread.
struct Countdown {
    qint32 total;
    qint32 count = 0;

    bool isLast() { return ++count == total; }
};

std::shared_ptr<Countdown> countdown(const std::vector<Promise::Ptr> &promises) {
    return std::make_shared<Countdown>(Countdown{.total = static_cast<qint32>(promises.size())});
}

/// Nothing below 0, and no more than fits.
std::chrono::nanoseconds nanoseconds(double count) {
    constexpr auto largest = static_cast<double>(std::numeric_limits<qint64>::max());
    if (!(count > 0))
        return 0ns;
    return count >= largest ? std::chrono::nanoseconds::max()
                            : std::chrono::nanoseconds(static_cast<qint64>(count));
}

constexpr double nanosecondsPerSecond = 1e9;

} // namespace

Promise::Ptr Promise::chain(std::vector<Step> steps) {
    const auto end = std::find_if(steps.begin(), steps.end(), [](const Step &step) { return !step; });
    const auto chain = std::make_shared<Chain>();
    chain->steps.assign(std::make_move_iterator(steps.begin()), std::make_move_iterator(end));
    Chain::next(chain, {});
    return chain->outcome;
}

Promise::Ptr Promise::or_(const std::vector<Ptr> &promises) {
    const auto failures = countdown(promises);
    const Deferred::Ptr outcome = Deferred::deferred();
    for (const Ptr &promise : promises) {
        promise->when([outcome](const QVariant &result) { outcome->resolve(result); },
                      [outcome, failures](const PromiseError &reason) {
                          if (failures->isLast())
                              outcome->reject(reason);
                      });
    }
    return outcome;
}

Promise::Ptr Promise::and_(const std::vector<Ptr> &promises) {
    const auto successes = countdown(promises);
    const Deferred::Ptr outcome = Deferred::deferred();
    for (const Ptr &promise : promises) {
        promise->when(
            [outcome, successes](const QVariant &result) {
                if (successes->isLast())
                    outcome->resolve(result);
            },
            [outcome](const PromiseError &reason) { outcome->reject(reason); });
    }
    return outcome;
}

Promise::Ptr Promise::timeout(double intervalSeconds) {
    return timeout(intervalSeconds, 0);
}

Promise::Ptr Promise::timeout(double intervalSeconds, double leewayNanoseconds) {
    const Deferred::Ptr limited = Deferred::initWithQueue(_queue);
    chainTo(limited);
    TaskQueue &timerQueue = _queue ? *_queue : TaskQueue::mainQueue();
    timerQueue.after(nanoseconds(intervalSeconds * nanosecondsPerSecond), nanoseconds(leewayNanoseconds),
                     [limited] { limited->reject({.domain = QStringLiteral("Timeout"), .code = 100}); });
    return limited;
}

Promise::Ptr Promise::transform(Transform transform) {
    const Deferred::Ptr outcome = Deferred::deferred();
    when([outcome,
          transform = std::move(transform)](const QVariant &result) { outcome->resolve(transform(result)); },
         [outcome](const PromiseError &reason) { outcome->reject(reason); });
    return outcome;
}

QVariant Promise::wait(double limitSeconds) {
    struct Waiter {
        std::mutex lock;
        std::condition_variable condition;
        bool isWaiting = true;
    };
    const auto waiter = std::make_shared<Waiter>(); // the callback may come after the wait
    when([waiter](const QVariant &) {
        const std::lock_guard guard(waiter->lock);
        waiter->isWaiting = false;
        waiter->condition.notify_one();
    });
    {
        // One wait and no loop: who is woken early sees what there is.
        std::unique_lock guard(waiter->lock);
        constexpr std::chrono::nanoseconds longest =
            std::chrono::hours(24 * 365); // more would overflow the clock
        if (waiter->isWaiting)
            waiter->condition.wait_for(guard,
                                       std::min(nanoseconds(limitSeconds * nanosecondsPerSecond), longest));
    }
    return result();
}

} // namespace murvo
