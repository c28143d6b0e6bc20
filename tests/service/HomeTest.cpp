// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceFixture.h"

#include <QElapsedTimer>

#include <future>

namespace murvo::service::test {

namespace {

using namespace std::chrono_literals;

class HomeTest : public ServiceFixture {
  protected:
    static int pendingFilms(const Reply &reply) {
        return reply.json().value(QLatin1String("pendingFilms")).toInt(-1);
    }
    /// Asks for another count than known, while the test goes on.
    std::future<Reply> wait(int known) {
        // The service may be gone before the thread has begun: its address is taken here.
        const std::string path = tokenPath() + "Api/Home/PendingFilms?after=" + std::to_string(known);
        return std::async(std::launch::async,
                          [own = client(), path]() mutable { return replyOf(own.Get(path)); });
    }
};

TEST_F(HomeTest, TellsOfAFilmAsSoonAsItWaits) {
    EXPECT_EQ(pendingFilms(get(QStringLiteral("Api/Home/PendingFilms"))), 0);
    auto waiting = wait(0);
    EXPECT_EQ(waiting.wait_for(300ms), std::future_status::timeout);
    service->filmPending();
    ASSERT_EQ(waiting.wait_for(1s), std::future_status::ready);
    EXPECT_EQ(pendingFilms(waiting.get()), 1);
    EXPECT_EQ(pendingFilms(get(QStringLiteral("Api/Home/PendingFilms?after=0"))), 1)
        << "told late, told at once";
    for (const char *wrong : {"-1", "x", "", "99999999999"})
        EXPECT_EQ(get(QStringLiteral("Api/Home/PendingFilms?after=") + QLatin1String(wrong)).errorCode(),
                  QStringLiteral("badParameter"));
}

TEST_F(HomeTest, EndsWithoutWaitingForThosePagesThatWait) {
    auto waiting = wait(0);
    EXPECT_EQ(waiting.wait_for(300ms), std::future_status::timeout);
    QElapsedTimer clock;
    clock.start();
    service.reset();
    EXPECT_LT(clock.elapsed(), 3000);
    waiting.get();
}

} // namespace

} // namespace murvo::service::test
