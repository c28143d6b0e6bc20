// SPDX-License-Identifier: GPL-3.0-or-later
// The window stack during a film, as the window manager, the mouse and the keyboard see it.

#include "app/Classes/MDragReceiverWebView.h"
#include "app/Classes/MKeyableWindow.h"
#include "app/Media/VLCMediaPlayer.h"
#include "app/Platform/MainWindow.h"
#include "app/ViewControllers/LoaderViewController.h"
#include "app/ViewControllers/WebViewController.h"
#include "support/PlayerFixture.h"
#include "support/TestFilms.h"
#include "support/Wait.h"
#include "support/XTools.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QDropEvent>
#include <QMimeData>
#include <QScreen>
#include <QThread>

#include <gmock/gmock.h>

namespace murvo::test {

using namespace std::chrono_literals;

class PlayerScreen : public PlayerFixture {
  protected:
    [[nodiscard]] MainWindow &window() const { return delegate->window(); }
    [[nodiscard]] QWidget &video() const { return *delegate->vlcViewWindow(); }
    [[nodiscard]] QWidget &page() const { return *delegate->playerWebViewWindow(); }

    /// The windows lie over the content, on the screen as in our own books, and the page knows its new size:
    /// until then clicks come out elsewhere.
    [[nodiscard]] bool isStackInPlace() const {
        const QRect content = window().contentScreenRect();
        const QString pageSize = QStringLiteral("%1x%2").arg(content.width()).arg(content.height());
        return video().geometry() == content && page().geometry() == content &&
               inPlayerPage(QStringLiteral("innerWidth + 'x' + innerHeight")) == pageSize &&
               screenRect(window()).bottomRight() == content.bottomRight() &&
               screenRect(video()) == content && screenRect(page()) == content;
    }
    [[nodiscard]] int offCentre() const {
        return (window().frameGeometry().center() - window().screen()->geometry().center()).manhattanLength();
    }
    [[nodiscard]] QPoint picture() const { return window().contentScreenRect().center() - QPoint(0, 60); }
    [[nodiscard]] QPoint barOfThePage() const {
        const QRect content = window().contentScreenRect();
        return {content.center().x(), content.bottom() - 20};
    }
    [[nodiscard]] QString stackOrder() const {
        QString order;
        const QStringList ids = stacking();
        for (const QString &id : ids) {
            order += id == xId(window()) ? QStringLiteral("main ") : QString();
            order += id == xId(video()) ? QStringLiteral("video ") : QString();
            order += id == xId(page()) ? QStringLiteral("page ") : QString();
        }
        return order.trimmed();
    }
};

TEST_F(PlayerScreen, FirstShowsHomeInTheMiddle) {
    ASSERT_NO_FATAL_FAILURE(startAtHome());
    const auto titleBar = [this] { return window().frameGeometry().height() - window().height(); };
    ASSERT_TRUE(waitUntil([&] { return titleBar() > 0; })) << "the window manager gives a frame";
    EXPECT_TRUE(waitUntil([this] { return offCentre() <= 2; })) << offCentre();
    EXPECT_EQ(window().contentView()->size(), QSize(600, 400));
}

TEST_F(PlayerScreen, FitsTheWindowAndStacksVideoAndPageOverIt) {
    ASSERT_NO_FATAL_FAILURE(startFilm(filmWithTwoAudioTracks()));
    EXPECT_TRUE(
        waitUntil([this] { return window().contentView()->size() == QSize(640, 360) && isStackInPlace(); }));
    EXPECT_TRUE(waitUntil([this] { return offCentre() <= 2; })) << offCentre();
    const QString order = QStringLiteral("main video page");
    EXPECT_EQ(stackOrder(), order);
    EXPECT_TRUE(waitUntil([this] { return page().isActiveWindow(); })) << "keys reach the page";
    for (const QWidget *child : {&video(), &page()})
        EXPECT_THAT(property(*child, QStringLiteral("_NET_WM_STATE")).toStdString(),
                    testing::HasSubstr("_NET_WM_STATE_SKIP_TASKBAR"));
    EXPECT_THAT(property(window(), QStringLiteral("WM_NORMAL_HINTS")).toStdString(),
                testing::HasSubstr("minimum aspect ratio: 640/360"));

    window().move(200, 150);
    window().resize(800, 500);
    EXPECT_TRUE(waitUntil([this] { return window().width() == 800 && isStackInPlace(); }));
    EXPECT_TRUE(
        waitUntil([this] { return playerPageEvents().contains(QStringLiteral("nativeApp:resized")); }));
    EXPECT_EQ(stackOrder(), order);

    run(QStringLiteral("wmctrl"), {QStringLiteral("-i"), QStringLiteral("-a"), xId(window())});
    EXPECT_TRUE(waitUntil([this] { return page().isActiveWindow(); })) << "the main window hands the keys on";
    EXPECT_EQ(stackOrder(), order);

    delegate->player()->pause();
    ASSERT_TRUE(waitUntil([this] { return delegate->player()->state() == VLCMediaPlayerStatePaused; }));
    EXPECT_EQ(window().width(), 800) << "a pause does not fit the window again";
}

TEST_F(PlayerScreen, IsMinimisedAndRestoredTogether) {
    ASSERT_NO_FATAL_FAILURE(startFilm(filmWithTwoAudioTracks()));
    ASSERT_TRUE(waitUntil([this] { return isStackInPlace(); }));
    const auto isOnScreen = [](const QWidget &widget) {
        return run(QStringLiteral("xwininfo"), {QStringLiteral("-id"), xId(widget)})
            .contains(QLatin1String("IsViewable"));
    };
    run(QStringLiteral("xdotool"), {QStringLiteral("windowminimize"), xId(window())});
    EXPECT_TRUE(
        waitUntil([&] { return !isOnScreen(window()) && !isOnScreen(video()) && !isOnScreen(page()); }));
    run(QStringLiteral("wmctrl"), {QStringLiteral("-i"), QStringLiteral("-a"), xId(window())});
    EXPECT_TRUE(waitUntil([&] { return isOnScreen(window()) && isOnScreen(video()) && isOnScreen(page()); }));
    EXPECT_TRUE(waitUntil([this] { return stackOrder() == QLatin1String("main video page"); }));
    EXPECT_TRUE(waitUntil([this] { return isStackInPlace(); }));
}

TEST_F(PlayerScreen, DoubleClickAndEscapeChangeTheFullScreen) {
    ASSERT_NO_FATAL_FAILURE(startFilm(filmWithTwoAudioTracks()));
    ASSERT_TRUE(
        waitUntil([this] { return window().contentView()->size() == QSize(640, 360) && isStackInPlace(); }));
    const auto isWholeScreen = [this] {
        return page().geometry() == window().screen()->geometry() && isStackInPlace();
    };

    pressKey(QStringLiteral("Escape"));
    clickAt(picture(), 2);
    ASSERT_TRUE(waitUntil([&] { return window().isFullScreen() && isWholeScreen(); }));
    EXPECT_TRUE(waitUntil([this] { return stackOrder() == QLatin1String("main video page"); }))
        << stackOrder().toStdString();
    ASSERT_TRUE(waitUntil([this] { return page().isActiveWindow(); }));
    pressKey(QStringLiteral("Escape"));
    ASSERT_TRUE(waitUntil(
        [this] { return !window().isFullScreen() && window().contentView()->size() == QSize(640, 360); }));
    EXPECT_TRUE(waitUntil([this] { return isStackInPlace(); }));
    EXPECT_TRUE(waitUntil([this] { return stackOrder() == QLatin1String("main video page"); }))
        << stackOrder().toStdString();
    ASSERT_TRUE(waitUntil([this] { return page().isActiveWindow(); }));

    // Below the top of the page's own area, and with Control, the double-click belongs to the page.
    clickAt(barOfThePage(), 2);
    EXPECT_TRUE(waitUntil([this] { return playerPageEvents().count(QStringLiteral("dblclick")) == 1; }));
    controlDoubleClickAt(picture());
    EXPECT_TRUE(waitUntil([this] { return playerPageEvents().count(QStringLiteral("dblclick")) == 2; }));
    EXPECT_FALSE(window().isFullScreen());

    clickAt(picture(), 2);
    ASSERT_TRUE(waitUntil([&] { return window().isFullScreen() && isWholeScreen(); }));
    ASSERT_TRUE(waitUntil([this] { return page().isActiveWindow(); }));
    clickAt(picture(), 2);
    ASSERT_TRUE(waitUntil([this] { return !window().isFullScreen(); }));
    QStringList changes = playerPageEvents().filter(QStringLiteral("Fullscreen"));
    const QString entered = QStringLiteral("nativeApp:enteredFullscreen");
    const QString left = QStringLiteral("nativeApp:leftFullscreen");
    EXPECT_EQ(changes, (QStringList{entered, left, entered, left}));
    ASSERT_TRUE(waitUntil([this] { return page().isActiveWindow(); })) << "the page has the keys again";
    pressKey(QStringLiteral("a"));
    EXPECT_TRUE(waitUntil(
        [this] { return inPlayerPage(QStringLiteral("keys.slice(-1)[0]")) == QLatin1String("a"); }));
    EXPECT_EQ(inPlayerPage(QStringLiteral("keys.includes('Escape')")), QStringLiteral("false"));
}

TEST_F(PlayerScreen, ComesHomeFromFullScreenAndThenEnds) {
    ASSERT_NO_FATAL_FAILURE(startFilm(filmWithTwoAudioTracks()));
    window().toggleFullScreen();
    ASSERT_TRUE(waitUntil([this] { return page().geometry() == window().screen()->geometry(); }));
    bool isEnded = false;
    QObject::connect(delegate.get(), &AppDelegate::terminate, delegate.get(), [&] { isEnded = true; });

    run(QStringLiteral("wmctrl"), {QStringLiteral("-i"), QStringLiteral("-c"), xId(window())});
    ASSERT_TRUE(waitUntil([this] { return isHomeShown(); }));
    EXPECT_FALSE(isEnded);
    ASSERT_TRUE(waitUntil(
        [this] { return !window().isFullScreen() && window().contentView()->size() == QSize(600, 400); }));
    EXPECT_TRUE(waitUntil([this] { return offCentre() <= 2; })) << offCentre();

    run(QStringLiteral("wmctrl"), {QStringLiteral("-i"), QStringLiteral("-c"), xId(window())});
    EXPECT_TRUE(waitUntil([&] { return isEnded; }));
    EXPECT_TRUE(window().isVisible()) << "the window is never closed by its button";
}

TEST_F(PlayerScreen, ComesHomeFromAPauseInTheLastSecond) {
    ASSERT_NO_FATAL_FAILURE(startFilm(shortFilm())); // 4.9 s: its last whole second is the fifth
    VLCMediaPlayer &player = *delegate->player();
    player.pause();
    ASSERT_TRUE(waitUntil([&] { return player.state() == VLCMediaPlayerStatePaused; }));
    EXPECT_TRUE(isFilmShown());
    player.play();
    ASSERT_TRUE(waitUntil([&] { return player.isPlaying(); }));
    player.setTime(VLCTime::timeWithInt(4000));
    ASSERT_TRUE(waitUntil([&] { return player.time().intValue() >= 4000; }));
    player.pause();
    EXPECT_TRUE(waitUntil([this] { return isHomeShown(); }));
}

TEST_F(PlayerScreen, StaysAtTheVeryEndAndGoesBackFromThere) {
    ASSERT_NO_FATAL_FAILURE(startFilm(shortFilm()));
    VLCMediaPlayer &player = *delegate->player();
    ASSERT_TRUE(waitUntil([&] { return player.time().intValue() > 3500 && !player.isPlaying(); }))
        << player.time().intValue() << ' ' << player.isPlaying() << ' ' << player.state();
    EXPECT_TRUE(isFilmShown());
    player.setTime(VLCTime::timeWithInt(2000));
    ASSERT_TRUE(waitUntil([&] { return player.isPlaying() && player.time().intValue() >= 2000; }));
    EXPECT_TRUE(waitUntil([&] { return player.volume() == 200; })) << "as before the end";
    ASSERT_TRUE(waitUntil([&] { return player.time().intValue() > 3500 && !player.isPlaying(); }));
    player.play();
    EXPECT_TRUE(waitUntil([&] { return player.isPlaying() && player.time().intValue() < 2000; }));
}

TEST_F(PlayerScreen, GoesBackFromAnEndThatIsNotReportedYet) {
    ASSERT_NO_FATAL_FAILURE(startFilm(shortFilm()));
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

TEST_F(PlayerScreen, TakesOneDroppedFileWhenThePageIsReady) {
    ASSERT_NO_FATAL_FAILURE(startFilm(filmWithTwoAudioTracks()));
    const auto drop = [this](const QList<QUrl> &urls) {
        QMimeData data;
        data.setUrls(urls);
        MDragReceiverWebView *view = delegate->playerWebViewController()->view();
        QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(view, &enter);
        QDropEvent event(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        event.setAccepted(false);
        QApplication::sendEvent(view, &event);
        return enter.isAccepted() && event.isAccepted();
    };
    const QUrl other = QUrl::fromLocalFile(shortFilm());
    EXPECT_FALSE(drop({other, other}));
    EXPECT_FALSE(drop({QUrl(QStringLiteral("http://h/v.mkv"))}));
    MDragReceiverWebView::isDraggable(false);
    EXPECT_FALSE(drop({other}));
    MDragReceiverWebView::isDraggable(true);

    stub.forgetRequests();
    EXPECT_TRUE(drop({other}));
    ASSERT_TRUE(waitUntil([this] { return !stub.requestsTo("Player/Play").isEmpty(); }));
    EXPECT_EQ(stub.requestsTo("Api/MovieFile/GetSubtitlesToDownload").size(), 1);
    EXPECT_TRUE(waitUntil([this] { return window().contentView()->size() == QSize(320, 240); }))
        << "the window takes the new film's shape";
}

TEST_F(PlayerScreen, SoundAloneKeepsTheWindowAndSilentFilmsPlay) {
    ASSERT_NO_FATAL_FAILURE(startFilm(soundOnly()));
    EXPECT_EQ(window().contentView()->size(), QSize(600, 400));
    delegate->loadHomeScreen();
    delegate->processVideoAndLaunch(silentFilm());
    ASSERT_TRUE(waitUntil([this] { return window().contentView()->size() == QSize(320, 240); }));
    ASSERT_TRUE(waitUntil(
        [this] { return inPlayerPage(QStringLiteral("typeof ask")) == QLatin1String("function"); }));
    playerPageSends(QStringLiteral("app:///Request/AudioInfo?guid=a"));
    playerPageSends(QStringLiteral("app:///Request/Duration?guid=d"));
    EXPECT_TRUE(waitUntil([this] { return !answersTo(QStringLiteral("d")).isEmpty(); }));
    EXPECT_TRUE(answersTo(QStringLiteral("a")).isEmpty());
}

TEST_F(PlayerScreen, TenFilmsLeaveNothingBehind) {
    ASSERT_NO_FATAL_FAILURE(startAtHome());
    struct Footprint {
        qsizetype windows;
        std::size_t observers;
        qsizetype threads;
    };
    const auto playOne = [this] {
        delegate->processVideoAndLaunch(shortFilm());
        EXPECT_TRUE(
            waitUntil([this] { return isFilmShown() && delegate->player()->time().intValue() > 200; }));
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

TEST_F(PlayerScreen, ThePageThatTheHomePageLeadsToIsOnTheScreenAfterTheLoader) {
    const auto page = [](const char *color) {
        return QByteArray("<!doctype html><title>page</title><body style='background:") + color + "'>";
    };
    stub.on("held", {.body = page("#0b5ed7"), .isHeld = true});
    stub.on("quick", {.body = page("#8a2be2")});
    ASSERT_NO_FATAL_FAILURE(startAtHome());
    const QRect content = delegate->window().contentScreenRect();
    const QPoint place = content.topLeft() + QPoint(content.width() / 4, content.height() / 4);
    const auto becomes = [&](const QColor &color) {
        return waitUntil([&] { return screenColor(place) == color; });
    };

    homePageSends(QStringLiteral("/held"));
    ASSERT_TRUE(waitUntil([this] { return !delegate->loaderViewController()->isLabelHidden(); }));
    const QColor loader = delegate->loaderViewController()->view()->palette().color(QPalette::Window);
    EXPECT_TRUE(becomes(loader)) << screenColor(place).name().toStdString();
    ASSERT_TRUE(waitUntil([this] { return stub.releaseHeld() > 0; }));
    EXPECT_TRUE(becomes(QColor(0x0b, 0x5e, 0xd7))) << screenColor(place).name().toStdString();
    // Nothing in these pages changes once they are there.
    homePageSends(QStringLiteral("/quick"));
    EXPECT_TRUE(becomes(QColor(0x8a, 0x2b, 0xe2))) << screenColor(place).name().toStdString();
}

} // namespace murvo::test
