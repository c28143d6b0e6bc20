// SPDX-License-Identifier: GPL-3.0-or-later
// What only shows within the program: the player between two reports, and what films leave behind.

#include "app/AppDelegate.h"
#include "app/Classes/MConstants.h"
#include "app/Classes/MKeyableWindow.h"
#include "app/Media/VLCMediaPlayer.h"
#include "support/DesktopEnvironment.h"
#include "support/StubService.h"
#include "support/TestFilms.h"
#include "support/Wait.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QThread>

#include <gtest/gtest.h>

namespace murvo::test {

using namespace std::chrono_literals;

class PlayerScreen : public testing::Test {
  protected:
    PlayerScreen() {
        stub.on(
            "Player/Home",
            StubReply{.body = "<script>location.href='app:///Execute/EnableDraggableHomeScreen'</script>"});
        stub.on("Player/Play", StubReply{.body = "<title>film</title>"});
        stub.on("Api/MovieFile/GetSubtitlesToDownload", {.contentType = "application/json", .body = "{}"});
        MConstants::setMurvoBaseUrl(stub.baseUrl());
        delegate = std::make_unique<AppDelegate>(DesktopEnvironment::profile(), DesktopEnvironment::vlc());
        delegate->applicationDidFinishLaunching();
    }

    void playFilm() {
        ASSERT_TRUE(waitUntil([this] { return delegate->session().homeScreenLoaded; }));
        delegate->processVideoAndLaunch(shortFilm());
        EXPECT_TRUE(waitUntil([this] {
            return delegate->playerWebViewWindow() && delegate->playerWebViewWindow()->isVisible() &&
                   delegate->player()->time().intValue() > 200;
        }));
    }

    StubService stub;
    std::unique_ptr<AppDelegate> delegate;
};

TEST_F(PlayerScreen, GoesBackFromAnEndThatIsNotReportedYet) {
    ASSERT_NO_FATAL_FAILURE(playFilm());
    VLCMediaPlayer &player = *delegate->player();
    const auto endWithoutReports = [&player] { // no event loop runs here
        player.setTime(VLCTime::timeWithInt(4000));
        const QDeadlineTimer limit(10s);
        while (player.isPlaying() && !limit.hasExpired())
            QThread::yieldCurrentThread();
        return !player.isPlaying();
    };
    ASSERT_TRUE(endWithoutReports());
    player.play();
    ASSERT_TRUE(waitUntil([&] { return player.isPlaying() && player.time().intValue() < 2000; }));
    ASSERT_TRUE(endWithoutReports());
    player.setTime(VLCTime::timeWithInt(2000));
    EXPECT_TRUE(waitUntil([&] { return player.isPlaying() && player.time().intValue() >= 2000; }));
}

TEST_F(PlayerScreen, TenFilmsLeaveNothingBehind) {
    struct Footprint {
        qsizetype windows;
        std::size_t observers;
        qsizetype threads;
    };
    const auto playOne = [this] {
        playFilm();
        delegate->loadHomeScreen();
    };
    const auto measure = [] {
        return Footprint{
            QApplication::topLevelWidgets().size(), NotificationCenter::defaultCenter().observerCount(),
            QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size()};
    };
    playOne();
    playOne(); // what is made once has been made
    const Footprint before = measure();
    for (int i = 0; i < 10; ++i)
        playOne();
    EXPECT_EQ(measure().windows, before.windows);
    EXPECT_EQ(measure().observers, before.observers);
    // Pools of the web engine breathe; a leak of one thread a film would be ten.
    EXPECT_TRUE(waitUntil([&] { return measure().threads <= before.threads + 3; }))
        << before.threads << " threads before, " << measure().threads << " after";
}

} // namespace murvo::test
