// SPDX-License-Identifier: GPL-3.0-or-later
// The menus' keys, their dialogs, and the chooser of the pages' file buttons.

#include "conformance/Screen.h"
#include "conformance/Session.h"
#include "support/TestFilms.h"
#include "support/Wait.h"
#include "support/XTools.h"

#include <QClipboard>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>

#include <gmock/gmock.h>

namespace murvo::test {

using namespace std::chrono_literals;

class Menus : public Running {
  protected:
    static void press(const char *key) { pressKey(QString::fromLatin1(key)); }
    /// Another dialog than the one before has the keys.
    [[nodiscard]] bool waitForDialog(const XWindow &before = XWindow()) const {
        return waitUntil([&] {
            const XWindow dialog = program.dialog();
            return dialog.exists() && !(dialog == before) && XWindow::active() == dialog;
        });
    }
    [[nodiscard]] bool waitForNoDialog() const {
        return waitUntil([this] { return !program.dialog().exists(); });
    }
    [[nodiscard]] bool waitForFilm() const {
        return waitUntil([this] { return session.isFilmPlaying(); });
    }
};

TEST_F(Menus, OpenTakesAFileOfAnyKindAndBeginsWhereTheLastFilmWas) {
    press("ctrl+o");
    ASSERT_TRUE(waitForDialog());
    EXPECT_EQ(program.dialog().title(), QStringLiteral("Open a film"));
    press("Escape");
    ASSERT_TRUE(waitForNoDialog());
    EXPECT_TRUE(waitUntil([this] { return session.isHomeShown(); })) << "cancelled: all stays as it is";
    EXPECT_TRUE(stub.requests().isEmpty()) << stub.requests().value(0).head.toStdString();

    ASSERT_TRUE(QFile::copy(silentFilm(), program.path(QStringLiteral("film.mkv"))));
    ASSERT_TRUE(QFile::copy(soundOnly(), program.path(QStringLiteral("sound.mka"))));
    press("ctrl+o");
    ASSERT_TRUE(waitForDialog());
    typeInstead(program.path(QStringLiteral("film.mkv")));
    press("Return");
    ASSERT_TRUE(waitForFilm());
    player.forget();
    press("ctrl+o");
    ASSERT_TRUE(waitForDialog());
    typeInstead(QStringLiteral("sound.mka")); // of the folder that shows
    press("Return");
    EXPECT_TRUE(waitUntil([this] { return session.lookups().size() == 2; }));
    EXPECT_TRUE(waitForFilm());
    EXPECT_THAT(session.lookups().value(1).body.toStdString(), testing::HasSubstr("&fileName=sound.mka&"));
}

TEST_F(Menus, AChooserOpenedDuringASearchStaysAboveTheFilmThatComes) {
    stub.on(Session::lookupPath, {.body = "{}", .isHeld = true});
    ASSERT_EQ(program.startAgain({filmWithTwoAudioTracks()}), 0);
    home.send("app:///Execute/EnableDraggableHomeScreen");
    ASSERT_TRUE(waitUntil([this] { return session.lookups().size() == 1; }));
    press("ctrl+o");
    ASSERT_TRUE(waitForDialog());
    EXPECT_EQ(stub.releaseHeld(), 1);
    ASSERT_TRUE(waitForFilm());
    EXPECT_TRUE(waitUntil([this] { return program.windows().last() == program.dialog(); })) << "the topmost";
    EXPECT_TRUE(waitUntil([this] { return XWindow::active() == program.dialog(); }));
    stub.on(Session::lookupPath, StubReply{.body = "{}"});
    player.forget();
    typeInstead(shortFilm());
    press("Return");
    EXPECT_TRUE(waitForFilm());
    EXPECT_EQ(session.lookups().size(), 2);
}

TEST_F(Menus, OpenUrlSaysWhatIsNoAddressAndTakesWhatIsOne) {
    QFile file(silentFilm());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    stub.on("film.mkv", StubService::bytesWithRanges(file.readAll()));
    const QImage complaint = Screen::dialogText(
        QStringLiteral("This is no address of a film: it must begin with http:// or https://."));
    const auto complains = [&](bool isWished) {
        return waitUntil([&] { return Screen::shows(complaint, program.dialog().geometry()) == isWished; });
    };
    QGuiApplication::clipboard()->setText(QStringLiteral("no address\n"));
    press("ctrl+u");
    ASSERT_TRUE(waitForDialog());
    press("Return"); // what was copied is not taken over
    EXPECT_TRUE(complains(true));
    for (const char *bad : {"film.mkv", "ftp://h/v.mkv", "http://", "file:///etc/passwd"}) {
        typeInstead(QString::fromLatin1(bad));
        EXPECT_TRUE(complains(false)) << bad;
        press("Return");
        EXPECT_TRUE(complains(true)) << bad;
    }
    EXPECT_TRUE(stub.requests().isEmpty()) << stub.requests().value(0).head.toStdString();
    typeInstead(QStringLiteral("  %1film.mkv").arg(stub.baseUrl()));
    press("Return");
    EXPECT_TRUE(waitForFilm());

    stub.forgetRequests();
    ASSERT_NO_FATAL_FAILURE(session.openUrl(QStringLiteral(" %1film.mkv\n").arg(stub.baseUrl())));
    EXPECT_TRUE(waitUntil([this] { return session.playerPages().size() == 1; })) << "one that was copied";
}

TEST_F(Menus, AChooserGoesWithTheFilmThatItWasOpenedOver) {
    for (const char *key : {"ctrl+o", "ctrl+u"}) {
        ASSERT_NO_FATAL_FAILURE(session.playFilm(filmWithTwoAudioTracks()));
        ASSERT_TRUE(waitUntil([this] { return XWindow::active() == program.pageWindow(); }));
        press(key);
        ASSERT_TRUE(waitForDialog());
        player.send("app:///Execute/Stop");
        EXPECT_TRUE(waitUntil([this] { return session.isHomeShown(); })) << key;
    }
}

TEST_F(Menus, FullScreenFollowsItsKey) {
    ASSERT_NO_FATAL_FAILURE(session.playFilm(filmWithTwoAudioTracks()));
    ASSERT_TRUE(waitUntil([this] { return XWindow::active() == program.pageWindow(); }));
    const auto isFullScreen = [this] { return program.mainWindow().hasState("_NET_WM_STATE_FULLSCREEN"); };
    press("F11");
    ASSERT_TRUE(
        waitUntil([&] { return isFullScreen() && player.count("nativeApp:enteredFullscreen") == 1; }));
    ASSERT_TRUE(waitUntil([this] { return XWindow::active() == program.pageWindow(); }));
    press("F11");
    EXPECT_TRUE(waitUntil([&] { return !isFullScreen() && player.count("nativeApp:leftFullscreen") == 1; }));

    session.goHome();
    ASSERT_TRUE(waitUntil([this] { return XWindow::active() == program.mainWindow(); }));
    press("F11");
    ASSERT_TRUE(waitUntil([&] { return isFullScreen() && XWindow::active() == program.mainWindow(); }));
    press("Escape");
    EXPECT_TRUE(waitUntil([&] { return !isFullScreen(); })) << "at home, too";
}

TEST_F(Menus, AFileButtonOfAPageTakesSubtitlesOnly) {
    stub.on("Player/Play",
            StubReply{.body = player.document("<input type='file' style='position:fixed;inset:0' "
                                              "onchange=\"tell('chosen', this.files[0].name)\">")});
    ASSERT_NO_FATAL_FAILURE(session.playFilm(filmWithTwoAudioTracks()));
    ASSERT_TRUE(
        waitUntil([this] { return player.evaluate(QStringLiteral("innerWidth")) == QJsonValue(640); }));
    const QTemporaryDir folder;
    for (const char *name : {"notes.txt", "FILM.SUB", "film.srt"}) {
        QFile file(folder.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("text");
    }
    const auto choose = [&](const char *name) {
        typeInstead(folder.filePath(QString::fromLatin1(name)));
        press("Return");
    };
    const auto chosen = [this] { return player.events(QStringLiteral("chosen")); };
    clickAt(session.content().center());
    ASSERT_TRUE(waitForDialog());
    press("Escape");
    ASSERT_TRUE(waitForNoDialog());

    clickAt(session.content().center());
    ASSERT_TRUE(waitForDialog());
    const XWindow chooser = program.dialog();
    choose("notes.txt");
    ASSERT_TRUE(waitForDialog(chooser)) << "the refusal";
    const XWindow refusal = program.dialog();
    press("Return");
    ASSERT_TRUE(waitForDialog(refusal));
    EXPECT_TRUE(chosen().isEmpty());
    choose("FILM.SUB");
    ASSERT_TRUE(waitUntil([&] { return chosen().size() == 1; }));
    EXPECT_EQ(chosen().first().values, QJsonArray{QStringLiteral("FILM.SUB")});

    ASSERT_TRUE(waitForNoDialog());
    clickAt(session.content().center());
    ASSERT_TRUE(waitForDialog());
    choose("film.srt");
    EXPECT_TRUE(waitUntil([&] { return chosen().size() == 2; }));
}

} // namespace murvo::test
