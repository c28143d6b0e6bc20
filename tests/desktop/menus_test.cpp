// SPDX-License-Identifier: GPL-3.0-or-later
// The menus with their dialogs, and the chooser of the pages' file buttons, by real keys and clicks.

#include "app/Classes/MKeyableWindow.h"
#include "app/Media/VLCMediaPlayer.h"
#include "app/Platform/MainWindow.h"
#include "support/PlayerFixture.h"
#include "support/TestFilms.h"
#include "support/Wait.h"
#include "support/XTools.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>

namespace murvo::test {

using namespace std::chrono_literals;

class Menus : public PlayerFixture {
  protected:
    using Step = std::function<bool(QWidget &dialog)>;

    /// What to do in a dialog of this kind.
    template<typename Dialog, typename Body>
    static Step in(Body body) {
        return [body](QWidget &dialog) {
            auto *own = qobject_cast<Dialog *>(&dialog);
            if (own)
                body(*own);
            return own != nullptr;
        };
    }

    /// Does the steps in order, each once a modal dialog of its kind has the keys, and waits until the last
    /// one is closed. A dialog runs an event loop of its own; a step runs within it, and its keys come after
    /// it.
    template<typename Trigger>
    static void inDialogs(Trigger trigger, const std::vector<Step> &steps) {
        std::size_t done = 0;
        bool isBusy = false; // a step may run the event loop itself
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, [&] {
            QWidget *dialog = QApplication::activeModalWidget();
            if (isBusy || done == steps.size() || !dialog || !dialog->isActiveWindow())
                return;
            isBusy = true;
            done += steps[done](*dialog) ? 1 : 0;
            isBusy = false;
        });
        poll.start(20ms);
        trigger();
        EXPECT_TRUE(waitUntil([&] { return done == steps.size() && !QApplication::activeModalWidget(); }))
            << done << " steps done";
    }

    static void pressReturn() { pressKey(QStringLiteral("Return")); }
    [[nodiscard]] bool isLookedUp() const {
        return !stub.requestsTo("Api/MovieFile/GetSubtitlesToDownload").isEmpty();
    }
};

TEST_F(Menus, OpenTakesAFileOfAnyKindAndBeginsWhereTheLastFilmWas) {
    ASSERT_NO_FATAL_FAILURE(startAtHome());
    const auto pressOpen = [] { pressKey(QStringLiteral("ctrl+o")); };
    inDialogs(pressOpen, {in<QFileDialog>([](QFileDialog &) { pressKey(QStringLiteral("Escape")); })});
    EXPECT_TRUE(isHomeShown()) << "cancelled: all stays as it is";
    EXPECT_FALSE(isLookedUp());

    const QString film = silentFilm();
    inDialogs(pressOpen, {in<QFileDialog>([&](QFileDialog &) {
                  typeInstead(film);
                  pressReturn();
              })});
    ASSERT_TRUE(waitUntil([this] { return isFilmShown(); }));
    inDialogs(pressOpen, {in<QFileDialog>([&](QFileDialog &chooser) {
                  EXPECT_EQ(chooser.directory().absolutePath(), QFileInfo(film).absolutePath());
                  pressKey(QStringLiteral("Escape"));
              })});
    EXPECT_TRUE(isFilmShown());
}

TEST_F(Menus, OpenUrlSaysWhatIsNoAddressAndTakesWhatIsOne) {
    ASSERT_NO_FATAL_FAILURE(startAtHome());
    QFile file(silentFilm());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    stub.on("film.mkv", StubService::bytesWithRanges(file.readAll()));
    const auto refuses = [](QDialog &dialog, const char *address) {
        const auto isRefused = [&dialog] {
            const auto labels = dialog.findChildren<QLabel *>();
            return std::any_of(labels.begin(), labels.end(), [](const QLabel *label) {
                return label->text().startsWith(QLatin1String("This is no address"));
            });
        };
        typeInstead(QString::fromLatin1(address));
        EXPECT_TRUE(waitUntil([&] { return !isRefused(); })) << address;
        pressReturn();
        EXPECT_TRUE(waitUntil(isRefused)) << address;
    };
    const auto pressOpenUrl = [] { pressKey(QStringLiteral("ctrl+u")); };
    QApplication::clipboard()->setText(QStringLiteral("no address\n"));
    inDialogs(pressOpenUrl, {in<QDialog>([](QDialog &dialog) {
                  EXPECT_EQ(dialog.findChild<QLineEdit *>()->text(), QString());
                  pressKey(QStringLiteral("Escape"));
              })});
    QApplication::clipboard()->setText(QStringLiteral(" http://h/copied.mkv\n"));
    inDialogs(pressOpenUrl, {in<QDialog>([&](QDialog &dialog) {
                  EXPECT_EQ(dialog.findChild<QLineEdit *>()->text(), QStringLiteral("http://h/copied.mkv"));
                  for (const char *bad : {"film.mkv", "ftp://h/v.mkv", "http://", "file:///etc/passwd"})
                      refuses(dialog, bad);
                  typeInstead(QStringLiteral("  ") + stub.baseUrl() + QStringLiteral("film.mkv"));
                  pressReturn();
              })});
    ASSERT_TRUE(waitUntil([this] { return isFilmShown() && delegate->player()->isPlaying(); }));
    EXPECT_EQ(delegate->session().videoSourcePath, stub.baseUrl() + QStringLiteral("film.mkv"));
}

TEST_F(Menus, AChooserGoesWithTheFilmThatItWasOpenedOver) {
    ASSERT_NO_FATAL_FAILURE(startFilm(filmWithTwoAudioTracks()));
    for (const char *key : {"ctrl+o", "ctrl+u"}) {
        if (!isFilmShown())
            delegate->processVideoAndLaunch(filmWithTwoAudioTracks());
        ASSERT_TRUE(
            waitUntil([this] { return isFilmShown() && delegate->playerWebViewWindow()->isActiveWindow(); }));
        inDialogs([key] { pressKey(QString::fromLatin1(key)); },
                  {in<QDialog>([this](QDialog &) { delegate->loadHomeScreen(); })});
        EXPECT_TRUE(isHomeShown()) << key;
    }
}

TEST_F(Menus, FullScreenFollowsItsKeyAndTheMenuShowsIt) {
    ASSERT_NO_FATAL_FAILURE(startFilm(filmWithTwoAudioTracks()));
    const QList<QAction *> actions = delegate->window().actions();
    const auto fullScreen = std::find_if(actions.begin(), actions.end(), [](const QAction *action) {
        return action->shortcut() == QKeySequence(Qt::Key_F11);
    });
    ASSERT_NE(fullScreen, actions.end());
    pressKey(QStringLiteral("F11"));
    EXPECT_TRUE(waitUntil([this] { return delegate->window().isFullScreen(); }));
    EXPECT_TRUE((*fullScreen)->isChecked());
    EXPECT_TRUE(waitUntil(
        [this] { return playerPageEvents().contains(QStringLiteral("nativeApp:enteredFullscreen")); }));
    pressKey(QStringLiteral("Escape"));
    EXPECT_TRUE(waitUntil([this] { return !delegate->window().isFullScreen(); }));
    EXPECT_FALSE((*fullScreen)->isChecked());
}

TEST_F(Menus, AFileButtonOfAPageTakesSubtitlesOnly) {
    stub.on("Player/Play", StubReply{.body = R"html(<!doctype html><script src="/jquery.js"></script>
        <body style="margin:0"><input type="file" style="position:fixed;inset:0"
          onchange="window.chosen = this.files[0].name"><script>window.times = [1, 2];</script>)html"});
    ASSERT_NO_FATAL_FAILURE(startFilm(filmWithTwoAudioTracks()));
    const QTemporaryDir folder;
    for (const char *name : {"notes.txt", "FILM.SUB"}) {
        QFile file(folder.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("text");
    }
    const auto clickButton = [this] { clickAt(delegate->window().contentScreenRect().center()); };
    ASSERT_TRUE(waitUntil([this] { return delegate->window().contentView()->size() == QSize(640, 360); }));
    ASSERT_TRUE(
        waitUntil([this] { return inPlayerPage(QStringLiteral("innerWidth")) == QLatin1String("640"); }));

    inDialogs(clickButton, {in<QFileDialog>([](QFileDialog &) { pressKey(QStringLiteral("Escape")); })});
    EXPECT_EQ(inPlayerPage(QStringLiteral("typeof chosen")), QStringLiteral("undefined"));
    const auto choose = [&](const char *name) {
        return in<QFileDialog>([&folder, name](QFileDialog &) {
            typeInstead(folder.filePath(QString::fromLatin1(name)));
            pressReturn();
        });
    };
    inDialogs(clickButton, {choose("notes.txt"), in<QMessageBox>([](QMessageBox &) { pressReturn(); }),
                            choose("FILM.SUB")});
    EXPECT_EQ(inPlayerPage(QStringLiteral("chosen")), QStringLiteral("FILM.SUB"));
}

} // namespace murvo::test
