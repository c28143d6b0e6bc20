// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Classes/Deferred.h"
#include "app/Platform/TaskQueue.h"
#include "support/Wait.h"

#include <QThread>

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

namespace murvo {

using testing::ElementsAre;

namespace {

/// Registers one callback of each kind that writes its name and what it was given.
std::vector<std::string> *watch(const Promise::Ptr &promise, std::vector<std::string> *log) {
    promise->when([log](const QVariant &value) { log->push_back("when " + value.toString().toStdString()); })
        ->any([log] { log->push_back("any"); })
        ->failed([log](const PromiseError &error) { log->push_back("failed " + error.domain.toStdString()); })
        ->when([log](const QVariant &) { log->push_back("when again"); });
    return log;
}

} // namespace

TEST(Promise, CallsEachKindInOrderOfRegistration) {
    std::vector<std::string> log;
    const auto resolved = Deferred::deferred();
    watch(resolved, &log);
    EXPECT_TRUE(log.empty());
    resolved->resolve(5);
    EXPECT_THAT(log, ElementsAre("when 5", "any", "when again"));

    log.clear();
    const auto rejected = Deferred::deferred();
    watch(rejected, &log);
    rejected->reject({.domain = QStringLiteral("D"), .code = 3});
    EXPECT_THAT(log, ElementsAre("any", "failed D"));

    log.clear();
    watch(Promise::resolved(QStringLiteral("at once")), &log);
    EXPECT_THAT(log, ElementsAre("when at once", "any", "when again"));
}

TEST(Promise, FirstSettlementWinsButLaterValuesAreStored) {
    int calls = 0;
    const auto deferred = Deferred::deferred();
    deferred->when([&](const QVariant &value) { calls += value.toInt(); });
    deferred->resolve(1);
    deferred->resolve(100);
    deferred->reject({.domain = QStringLiteral("late"), .code = 9});
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(deferred->result(), QVariant(100));
    EXPECT_EQ(deferred->reason().domain, QStringLiteral("late"));
    EXPECT_TRUE(deferred->isResolved());
    EXPECT_FALSE(deferred->isRejected());
    EXPECT_EQ(deferred->promise().get(), deferred.get());
}

TEST(Promise, OnAQueueCallsBackThereLater) {
    TaskQueue queue(QStringLiteral("test"));
    const auto deferred = Deferred::deferred();
    const Promise::Ptr moved = deferred->on(queue);
    EXPECT_NE(moved.get(), deferred.get());
    EXPECT_EQ(moved->when([](const QVariant &) {}).get(), moved.get());

    std::atomic<QThread *> calledOn = nullptr;
    moved->when([&](const QVariant &) { calledOn = QThread::currentThread(); });
    deferred->resolve(1);
    ASSERT_TRUE(test::waitUntil([&] { return calledOn != nullptr; }));
    EXPECT_EQ(calledOn.load(), queue.context()->thread());

    // Registered after settlement it still goes through the queue, here the main one: not before the loop
    // turns.
    bool isCalled = false;
    deferred->onMainQueue()->when([&](const QVariant &) { isCalled = true; });
    EXPECT_FALSE(isCalled);
    EXPECT_TRUE(test::waitUntil([&] { return isCalled; }));
}

TEST(Promise, RunsEveryCallbackOnceWhenThreadsRaceWithTheSettlement) {
    for (int round = 0; round < 200; ++round) {
        const auto deferred = Deferred::deferred();
        std::atomic<int> calls = 0;
        constexpr int perThread = 20;
        const auto registerSome = [&] {
            for (int i = 0; i < perThread; ++i)
                deferred->when([&](const QVariant &value) { calls += value.toInt(); });
        };
        std::thread a(registerSome);
        std::thread b(registerSome);
        std::thread settler([&] { deferred->resolve(1); });
        a.join();
        b.join();
        settler.join();
        ASSERT_EQ(calls, 2 * perThread);
    }
}

TEST(Promise, AnAbandonedDeferredGoesAwayWithItsCallbacks) {
    const auto held = std::make_shared<int>(1);
    {
        const auto deferred = Deferred::deferred();
        deferred->when([held](const QVariant &) {});
        EXPECT_EQ(held.use_count(), 2);
    }
    EXPECT_EQ(held.use_count(), 1);

    // A callback may drop the last reference to the promise that calls it.
    auto deferred = Deferred::deferred();
    Deferred *raw = deferred.get();
    raw->any([&] { deferred.reset(); })->any([held] {});
    raw->resolve(1);
    EXPECT_EQ(held.use_count(), 1);
}

} // namespace murvo
