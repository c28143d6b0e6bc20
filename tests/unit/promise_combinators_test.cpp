// SPDX-License-Identifier: GPL-3.0-or-later
// Promises made of promises, on real queues, threads and timers.

#include "app/Classes/Deferred.h"
#include "app/Platform/TaskQueue.h"
#include "support/Wait.h"

#include <QElapsedTimer>
#include <QThread>

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

namespace murvo {

using namespace std::chrono_literals;

namespace {

PromiseError error(const char *domain) {
    return {.domain = QString::fromLatin1(domain), .code = 1};
}

/// "pending", or what became of it: its result or the domain of its reason.
std::string outcome(const Promise::Ptr &promise) {
    if (promise->isResolved())
        return "resolved " + promise->result().toString().toStdString();
    if (promise->isRejected())
        return "rejected " + promise->reason().domain.toStdString();
    return "pending";
}

} // namespace

TEST(PromiseCombinators, AChainHandsEachResultOnUntilOneFails) {
    TaskQueue queue(QStringLiteral("test"));
    std::vector<std::string> seen;
    const auto answersLater = [&](const char *answer) {
        return [&seen, &queue, answer](const QVariant &previous) -> Promise::Ptr {
            seen.push_back(previous.isValid() ? previous.toString().toStdString() : "none");
            const auto deferred = Deferred::deferred();
            queue.async([deferred, answer] { deferred->resolve(QString::fromLatin1(answer)); });
            return deferred->onMainQueue();
        };
    };
    const Promise::Ptr chain =
        Promise::chain({answersLater("a"), answersLater("b"), nullptr, answersLater("c")});
    EXPECT_EQ(seen, (std::vector<std::string>{"none"})) << "the first step runs at once";
    ASSERT_TRUE(test::waitUntil([&] { return chain->isResolved(); }));
    EXPECT_EQ(outcome(chain), "resolved b");
    EXPECT_EQ(seen, (std::vector<std::string>{"none", "a"}));

    bool isRun = false;
    const auto fails = [](const QVariant &) { return Promise::rejected(error("broken")); };
    const auto never = [&](const QVariant &) {
        isRun = true;
        return Promise::resolved(1);
    };
    EXPECT_EQ(outcome(Promise::chain({fails, never})), "rejected broken");
    EXPECT_FALSE(isRun);
    EXPECT_EQ(outcome(Promise::chain({[](const QVariant &) { return nullptr; }, never})), "pending");
    EXPECT_EQ(outcome(Promise::chain({})), "resolved ");
}

TEST(PromiseCombinators, OrTakesTheFirstSuccessAndAndTheLast) {
    const auto a = Promise::rejected(error("a"));
    const auto b = Promise::rejected(error("b"));
    const auto one = Promise::resolved(1);
    const auto two = Promise::resolved(2);
    EXPECT_EQ(outcome(Promise::or_({a, b})), "rejected b");
    EXPECT_EQ(outcome(Promise::or_({a, one})), "resolved 1");
    EXPECT_EQ(outcome(Promise::and_({one, two})), "resolved 2");
    EXPECT_EQ(outcome(Promise::and_({one, a})), "rejected a");
    EXPECT_EQ(outcome(Promise::or_({})), "pending");
    EXPECT_EQ(outcome(Promise::and_({})), "pending");

    // In time, not in the order of the list; and what comes late is stored, not heard.
    const auto first = Deferred::deferred();
    const auto second = Deferred::deferred();
    const auto either = Promise::or_({first, second});
    const auto both = Promise::and_({first, second});
    std::vector<int> heard;
    either->when([&](const QVariant &value) { heard.push_back(value.toInt()); });
    second->resolve(22);
    EXPECT_EQ(outcome(both), "pending");
    first->resolve(11);
    EXPECT_EQ(outcome(both), "resolved 11");
    EXPECT_EQ(outcome(either), "resolved 11") << "the later value has replaced the stored one";
    EXPECT_EQ(heard, std::vector<int>{22});
}

TEST(PromiseCombinators, ATimeoutRejectsOnTheReceiversQueueAndFiresInAnyCase) {
    TaskQueue queue(QStringLiteral("test"));
    const auto pending = Deferred::initWithQueue(&queue);
    QElapsedTimer clock;
    clock.start();
    const Promise::Ptr limited = pending->timeout(0.2);
    std::atomic<QThread *> calledOn = nullptr;
    std::atomic<qint64> calledAfterMs = 0;
    limited->failed([&](const PromiseError &) {
        calledAfterMs = clock.elapsed();
        calledOn = QThread::currentThread();
    });
    ASSERT_TRUE(test::waitUntil([&] { return calledOn != nullptr; }));
    EXPECT_EQ(calledOn.load(), queue.context()->thread());
    EXPECT_GE(calledAfterMs, 200);
    EXPECT_EQ(limited->reason().domain, QStringLiteral("Timeout"));
    EXPECT_EQ(limited->reason().code, 100);

    const auto quick = Deferred::deferred(); // without a queue: the timer is the main one's
    const Promise::Ptr inTime = quick->timeout(0.05, 0.5);
    quick->resolve(7);
    EXPECT_EQ(outcome(inTime), "resolved 7");
    ASSERT_TRUE(test::waitUntil([&] { return inTime->reason().code == 100; }));
    EXPECT_EQ(outcome(inTime), "resolved 7");

    const Promise::Ptr odd = Deferred::deferred()->timeout(-3, 1e30);
    EXPECT_TRUE(test::waitUntil([&] { return odd->isRejected(); }));
    EXPECT_EQ(outcome(Deferred::deferred()->timeout(1e300)), "pending");
}

TEST(PromiseCombinators, TransformsTheValueWhereTheCallbacksRun) {
    TaskQueue queue(QStringLiteral("test"));
    const auto source = Deferred::initWithQueue(&queue);
    std::atomic<QThread *> ranOn = nullptr;
    const Promise::Ptr doubled = source->transform([&](const QVariant &value) {
        ranOn = QThread::currentThread();
        return QVariant(value.toInt() * 2);
    });
    source->resolve(21);
    ASSERT_TRUE(test::waitUntil([&] { return doubled->isResolved(); }));
    EXPECT_EQ(outcome(doubled), "resolved 42");
    EXPECT_EQ(ranOn.load(), queue.context()->thread());
    EXPECT_EQ(outcome(Promise::rejected(error("e"))->transform([](const QVariant &value) { return value; })),
              "rejected e");
}

TEST(PromiseCombinators, WaitsForSuccessOnlyAndNoLongerThanItsLimit) {
    const auto timed = [](const Promise::Ptr &promise, double limit, qint64 &elapsedMs) {
        QElapsedTimer clock;
        clock.start();
        const QVariant result = promise->wait(limit);
        elapsedMs = clock.elapsed();
        return result;
    };
    qint64 elapsedMs = 0;
    const auto later = Deferred::deferred();
    std::thread settler([later] {
        std::this_thread::sleep_for(100ms);
        later->resolve(5);
    });
    EXPECT_EQ(timed(later, 10, elapsedMs), QVariant(5));
    settler.join();
    EXPECT_GE(elapsedMs, 90);
    EXPECT_LT(elapsedMs, 5000);

    EXPECT_FALSE(timed(Promise::rejected(error("e")), 0.2, elapsedMs).isValid());
    EXPECT_GE(elapsedMs, 190);
    EXPECT_EQ(timed(Promise::resolved(6), 10, elapsedMs), QVariant(6));
    EXPECT_LT(elapsedMs, 5000);

    // Nobody can run the callback of the main queue while the main thread waits; the value is there all the
    // same.
    const auto here = Deferred::deferred();
    const Promise::Ptr onMain = here->onMainQueue();
    here->resolve(8);
    EXPECT_EQ(timed(onMain, 0.2, elapsedMs), QVariant(8));
    EXPECT_GE(elapsedMs, 190);
}

} // namespace murvo
