// SPDX-License-Identifier: GPL-3.0-or-later
// The windows during a film, as the X server, the window manager, the mouse and the keyboard see them.

#include "conformance/Screen.h"
#include "conformance/Session.h"
#include "support/SoundRecorder.h"
#include "support/TestFilms.h"
#include "support/Wait.h"
#include "support/XTools.h"

#include <QGuiApplication>
#include <QScreen>

#include <gmock/gmock.h>

#include <algorithm>

namespace murvo::test {

using namespace std::chrono_literals;

class Windows : public Running {
  protected:
    [[nodiscard]] XWindow window() const { return program.mainWindow(); }
    [[nodiscard]] XWindow page() const { return program.pageWindow(); }
    [[nodiscard]] static QRect screen() { return QGuiApplication::primaryScreen()->geometry(); }

    /// Video and page lie over the content, and the page knows its size.
    [[nodiscard]] bool isStackInPlace() const {
        const QRect content = page().geometry();
        const auto size = QStringLiteral("%1x%2").arg(content.width()).arg(content.height());
        return !content.isEmpty() && program.videoWindow().geometry() == content &&
               window().geometry().bottomRight() == content.bottomRight() &&
               window().geometry().left() == content.left() &&
               player.evaluate(QStringLiteral("innerWidth + 'x' + innerHeight")) == QJsonValue(size);
    }
    [[nodiscard]] bool becomes(const QSize &size) const {
        return waitUntil([&] { return page().geometry().size() == size && isStackInPlace(); });
    }
    [[nodiscard]] bool isStacked() const {
        return waitUntil([this] {
            return program.windows() == QList{window(), program.videoWindow(), page()};
        });
    }
    [[nodiscard]] bool isCentred() const {
        return waitUntil([this] {
            const QRect frame = window().geometry().marginsAdded(window().frame());
            return window().frame().top() > 0 && (frame.center() - screen().center()).manhattanLength() <= 2;
        });
    }
    [[nodiscard]] bool isFullScreen() const { return window().hasState("_NET_WM_STATE_FULLSCREEN"); }
    [[nodiscard]] bool fillsTheScreen() const {
        return waitUntil(
            [this] { return isFullScreen() && page().geometry() == screen() && isStackInPlace(); });
    }
    [[nodiscard]] bool hasKeys() const {
        return waitUntil([this] { return XWindow::active() == page(); });
    }
    [[nodiscard]] QPoint picture() const { return session.content().center() - QPoint(0, 60); }
    [[nodiscard]] QPoint barOfThePage() const {
        return {session.content().center().x(), session.content().bottom() - 20};
    }
};

TEST_F(Windows, HomeIsOneWindowInTheMiddle) {
    EXPECT_TRUE(isCentred());
    EXPECT_EQ(home.evaluate(QStringLiteral("innerWidth + 'x' + innerHeight")),
              QJsonValue(QStringLiteral("600x400")));
    EXPECT_EQ(window().geometry().width(), 600);
    EXPECT_EQ(program.windows().size(), 1);
    EXPECT_TRUE(window().aspect().isEmpty());
}

TEST_F(Windows, TakeTheFilmsShapeAndStandOverOneAnother) {
    ASSERT_NO_FATAL_FAILURE(session.playFilm(filmWithTwoAudioTracks()));
    EXPECT_TRUE(becomes(QSize(640, 360)));
    EXPECT_TRUE(isCentred());
    EXPECT_TRUE(isStacked());
    EXPECT_TRUE(hasKeys());
    EXPECT_TRUE(waitUntil([this] { return Screen::colorCount(session.content()) > 200; }))
        << "the film shines through the page";
    EXPECT_EQ(window().aspect(), QSize(640, 360));
    for (const XWindow &child : {program.videoWindow(), page()}) {
        EXPECT_TRUE(child.hasState("_NET_WM_STATE_SKIP_TASKBAR"));
        EXPECT_TRUE(child.frame().isNull());
    }

    player.forget();
    window().moveTo({100, 90});
    EXPECT_TRUE(waitUntil([this] { return window().geometry().left() < 150 && isStackInPlace(); }));
    EXPECT_EQ(player.count("nativeApp:resized"), 0);
    window().resize({800, 480});
    EXPECT_TRUE(waitUntil([this] { return window().geometry().width() > 700 && isStackInPlace(); }));
    EXPECT_TRUE(waitUntil([this] { return player.count("nativeApp:resized") > 0; }));
    EXPECT_TRUE(player.events(QStringLiteral("nativeApp:resized")).first().values.isEmpty());
    const QRect resized = session.content();

    window().activate();
    EXPECT_TRUE(hasKeys()) << "the main window hands the keys on";
    EXPECT_TRUE(isStacked());
    player.send({"app:///Execute/Pause", "app:///Execute/Play"});
    session.settle();
    EXPECT_EQ(session.content(), resized) << "the film's states do not fit the window again";
}

TEST_F(Windows, OfALargeFilmTakeFourFifthsOfTheScreen) {
    ASSERT_NO_FATAL_FAILURE(session.playFilm(largeFilm()));
    EXPECT_TRUE(becomes(QSize(1024, 576))) << session.content().width() << 'x' << session.content().height();
    EXPECT_TRUE(isCentred());
}

TEST_F(Windows, AreMinimisedAndRestoredTogether) {
    ASSERT_NO_FATAL_FAILURE(session.playFilm(filmWithTwoAudioTracks()));
    ASSERT_TRUE(becomes(QSize(640, 360)));
    const QList<XWindow> all = program.windows();
    const auto areViewable = [&](bool isWished) {
        return waitUntil([&] {
            return std::all_of(all.begin(), all.end(),
                               [&](const XWindow &each) { return each.isViewable() == isWished; });
        });
    };
    window().minimise();
    EXPECT_TRUE(areViewable(false));
    all.first().activate();
    EXPECT_TRUE(areViewable(true));
    EXPECT_TRUE(isStacked());
    EXPECT_TRUE(waitUntil([this] { return isStackInPlace(); }));
}

TEST_F(Windows, DoubleClickAndEscapeChangeTheFullScreen) {
    ASSERT_NO_FATAL_FAILURE(session.playFilm(filmWithTwoAudioTracks()));
    ASSERT_TRUE(becomes(QSize(640, 360)));
    ASSERT_TRUE(hasKeys());
    player.forget();
    pressKey(QStringLiteral("Escape"));
    clickAt(picture(), 2);
    ASSERT_TRUE(fillsTheScreen());
    EXPECT_TRUE(isStacked());
    EXPECT_TRUE(hasKeys());
    player.send("app:///Request/IsFullscreen?guid=full");
    EXPECT_TRUE(waitUntil([this] { return player.answers("full") == QJsonArray{true}; }));
    pressKey(QStringLiteral("Escape"));
    ASSERT_TRUE(becomes(QSize(640, 360)));
    EXPECT_FALSE(isFullScreen());
    EXPECT_TRUE(isStacked());
    ASSERT_TRUE(hasKeys());

    // Below the top of the page's own area, and with Control, the double-click belongs to the page.
    clickAt(barOfThePage(), 2);
    EXPECT_TRUE(waitUntil([this] { return player.count("dom:dblclick") == 1; }));
    controlDoubleClickAt(picture());
    EXPECT_TRUE(waitUntil([this] { return player.count("dom:dblclick") == 2; }));
    EXPECT_FALSE(isFullScreen());

    clickAt(picture(), 2);
    ASSERT_TRUE(fillsTheScreen());
    ASSERT_TRUE(hasKeys());
    clickAt(picture(), 2);
    ASSERT_TRUE(becomes(QSize(640, 360)));
    ASSERT_TRUE(hasKeys()) << "the page has the keys again";
    pressKey(QStringLiteral("a"));
    const auto hasHeard = [this](const char *key) {
        const QList<PageEvent> keys = player.events(QStringLiteral("dom:keydown"));
        return std::any_of(keys.begin(), keys.end(), [key](const PageEvent &event) {
            return event.values.at(0).toString() == QLatin1String(key);
        });
    };
    EXPECT_TRUE(waitUntil([&] { return hasHeard("a"); }));
    EXPECT_FALSE(hasHeard("Escape"));
    QStringList changes = player.story().split(u' ').filter(QStringLiteral("Fullscreen"));
    changes.removeAll(QStringLiteral("response:full"));
    const auto entered = QStringLiteral("nativeApp:enteredFullscreen");
    const auto left = QStringLiteral("nativeApp:leftFullscreen");
    EXPECT_EQ(changes, (QStringList{entered, left, entered, left}));
    EXPECT_EQ(player.count("dom:dblclick"), 2) << "those that change the full screen do not reach the page";
}

TEST_F(Windows, WhollyBelongToThePictureWhenThePagesPartBeginsAtTheTop) {
    stub.on("Player/Play", StubReply{.body = player.document("<div id='next-sub'>all</div>")});
    ASSERT_NO_FATAL_FAILURE(session.playFilm(filmWithTwoAudioTracks()));
    ASSERT_TRUE(becomes(QSize(640, 360)));
    clickAt(barOfThePage(), 2);
    ASSERT_TRUE(fillsTheScreen());
    pressKey(QStringLiteral("Escape"));
    ASSERT_TRUE(becomes(QSize(640, 360)));
    std::ignore = player.evaluate(QStringLiteral("$('#next-sub').remove(); 1"));
    clickAt(picture(), 2);
    EXPECT_TRUE(waitUntil([this] { return player.count("dom:dblclick") == 1; }))
        << "no such part: the page's";
    EXPECT_FALSE(isFullScreen());
}

TEST_F(Windows, ComeHomeFromFullScreenByTheCloseButton) {
    ASSERT_NO_FATAL_FAILURE(session.playFilm(filmWithTwoAudioTracks()));
    ASSERT_TRUE(becomes(QSize(640, 360)));
    clickAt(picture(), 2);
    ASSERT_TRUE(fillsTheScreen());
    window().close();
    ASSERT_TRUE(waitUntil([this] { return session.isHomeShown(); }));
    EXPECT_TRUE(waitUntil([this] { return session.content().size() == QSize(600, 400); }));
    EXPECT_FALSE(isFullScreen());
    EXPECT_TRUE(isCentred());
    EXPECT_TRUE(window().aspect().isEmpty()) << "any shape again";
    EXPECT_TRUE(program.isRunning());
}

TEST_F(Windows, ComeHomeFromAPauseInTheLastSecondOnly) {
    ASSERT_NO_FATAL_FAILURE(session.playFilm(shortFilm())); // 4.9 s: its last whole second is the fifth
    player.send("app:///Execute/Pause");
    session.settle();
    letPass(300ms);
    EXPECT_TRUE(session.isFilmShown());
    player.forget();
    player.send({"app:///Execute/SeekTo?position=4", "app:///Execute/Play"});
    ASSERT_TRUE(waitUntil([this] { return player.timeMs() >= 4000; }));
    player.send("app:///Execute/Pause");
    EXPECT_TRUE(waitUntil([this] { return session.isHomeShown(); }));
}

TEST_F(Windows, StayAtTheVeryEndAndTheFilmGoesBackFromThere) {
    ASSERT_NO_FATAL_FAILURE(session.playFilm(shortFilm()));
    const auto ends = [this] {
        return waitUntil([this] { return player.timeMs() > 4500; }) && waitUntil([this] {
                   const auto count = player.count("timeUpdate");
                   letPass(700ms);
                   return player.count("timeUpdate") == count;
               });
    };
    SoundRecorder recorder;
    ASSERT_TRUE(waitUntil([&] { return recorder.amplitudeOf(440) > 0.05; }));
    player.send("app:///Execute/SeekTo?position=4");
    ASSERT_TRUE(ends());
    EXPECT_TRUE(session.isFilmShown());
    player.forget();
    player.send("app:///Execute/SeekTo?position=2");
    ASSERT_TRUE(waitUntil([this] { return player.timeMs() >= 2000; }));
    EXPECT_LT(player.timeMs(), 4000);
    EXPECT_TRUE(waitUntil([&] { return recorder.amplitudeOf(440) > 0.05; }));
    ASSERT_TRUE(ends());
    player.forget();
    player.send("app:///Execute/Play");
    EXPECT_TRUE(waitUntil([this] { return player.timeMs() > 0; }));
    EXPECT_LT(player.timeMs(), 2000) << "from the start";
}

TEST_F(Windows, TakeOneDroppedLocalFile) {
    const QUrl film = QUrl::fromLocalFile(shortFilm());
    EXPECT_FALSE(Screen::drop({film, film}, session.content().center()));
    EXPECT_FALSE(Screen::drop({QUrl(QStringLiteral("http://h/v.mkv"))}, session.content().center()));
    ASSERT_NO_FATAL_FAILURE(session.playFilm(filmWithTwoAudioTracks()));
    ASSERT_TRUE(becomes(QSize(640, 360)));
    EXPECT_FALSE(Screen::drop({film, film}, session.content().center()));
    EXPECT_EQ(session.lookups().size(), 1);
    EXPECT_EQ(home.count("refreshLevel"), 0);

    ASSERT_NO_FATAL_FAILURE(session.playFilm(shortFilm()));
    EXPECT_EQ(session.lookups().size(), 2);
    EXPECT_EQ(home.count("refreshLevel"), 1) << "by way of the home screen";
    EXPECT_TRUE(becomes(QSize(320, 240))) << "the new film's shape";
}

TEST_F(Windows, TellAPageOfAFileThatHangsOverItAndOfNothingElse) {
    const QUrl film = QUrl::fromLocalFile(shortFilm());
    std::ignore = home.evaluate(
        QStringLiteral("window.seen = [];"
                       "for (const name of ['dragenter', 'dragover', 'dragleave', 'drop'])"
                       "  addEventListener(name, ({dataTransfer}) =>"
                       "    seen.push([name, [...dataTransfer.types], dataTransfer.files.length +"
                       "      dataTransfer.getData('text/uri-list')].join(' ')));"
                       "1"));
    const auto seen = [this] { return home.evaluate(QStringLiteral("seen.join()")).toString(); };
    EXPECT_FALSE(Screen::drop({film, film}, session.content().center()));
    EXPECT_EQ(seen(), QString()) << "what is refused does not hang over it";
    ASSERT_NO_FATAL_FAILURE(session.playFilm(shortFilm()));
    ASSERT_NO_FATAL_FAILURE(session.goHome());
    EXPECT_EQ(seen(), QStringLiteral("dragenter Files 0,dragleave Files 0"));
}

TEST_F(Windows, KeepTheirSizeForSoundAloneAndPlayWithoutSound) {
    ASSERT_NO_FATAL_FAILURE(session.playFilm(soundOnly()));
    EXPECT_EQ(session.content().size(), QSize(600, 400));
    EXPECT_TRUE(window().aspect().isEmpty());
    ASSERT_NO_FATAL_FAILURE(session.playFilm(silentFilm()));
    ASSERT_TRUE(becomes(QSize(320, 240)));
    player.send({"app:///Request/AudioInfo?guid=a", "app:///Request/Duration?guid=d"});
    EXPECT_TRUE(waitUntil([this] { return !player.answers("d").isEmpty(); }));
    EXPECT_TRUE(player.answers("a").isEmpty());
}

} // namespace murvo::test
