// SPDX-License-Identifier: GPL-3.0-or-later
// How the program starts, what it says, how it ends.

#include "conformance/Screen.h"
#include "conformance/Session.h"
#include "support/TestFilms.h"
#include "support/Wait.h"
#include "support/XTools.h"

#include <QFile>
#include <QImage>
#include <QSet>

#include <gmock/gmock.h>

namespace murvo::test {

using namespace std::chrono_literals;

class Start : public Starting {};

TEST_F(Start, RefusesABaseUrlWithoutASlashAndUnknownOptions) {
    program.start({}, QStringLiteral("http://127.0.0.1:1"));
    ASSERT_TRUE(program.waitForEnd());
    EXPECT_EQ(program.exitStatus(), 2);
    EXPECT_EQ(program.logLines().filter(QStringLiteral("MURVO_BASE_URL must end in")).size(), 1);
    program.start({QStringLiteral("--no-such-option")});
    ASSERT_TRUE(program.waitForEnd());
    EXPECT_EQ(program.exitStatus(), 2);
    program.start({QStringLiteral("--help")});
    ASSERT_TRUE(program.waitForEnd());
    EXPECT_EQ(program.exitStatus(), 0);
    EXPECT_TRUE(program.standardOutput().startsWith("Usage: murvo"));
}

TEST_F(Start, SaysThatItsServiceCannotStartAndEndsAsFailed) {
    QFile inTheWay(program.path(QStringLiteral("xdg_data_home/murvo")));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    program.start({});
    ASSERT_TRUE(waitUntil([this] { return program.dialog().isViewable(); }, 20s));
    program.dialog().close();
    ASSERT_TRUE(program.waitForEnd());
    EXPECT_EQ(program.exitStatus(), 1);
    EXPECT_EQ(program.logLines().filter(QStringLiteral("murvo: ")).size(), 1) << program.log().toStdString();
}

TEST_F(Start, PlaysAFilmWithItsOwnServiceAndEndsInOrderOnSigterm) {
    program.start({silentFilm()});
    ASSERT_TRUE(waitUntil([this] { return session.isFilmShown(); }, 20s)) << program.log().toStdString();
    EXPECT_EQ(program.logged("Done analyzing video: found 0 subtitles to download").size(), 1);
    session.end();
}

TEST_F(Start, ShowsTheHomePageOfAnotherServiceAndEndsByItsWindow) {
    stub.on("base/Player/Home", StubReply{.body = home.document(Session::homeBody)});
    program.start({}, stub.baseUrl() + QStringLiteral("base/"));
    ASSERT_TRUE(waitUntil([this] { return session.isHomeShown(); }, 20s)) << program.log().toStdString();
    EXPECT_EQ(stub.requests().first().target, "/base/Player/Home");
    EXPECT_EQ(program.mainWindow().title(), QStringLiteral("Murvo"));
    program.mainWindow().close();
    ASSERT_TRUE(program.waitForEnd());
    EXPECT_EQ(program.exitStatus(), 0);
    program.expectOnlyLogLines();
}

TEST_F(Start, AFilmFromTheShellWaitsUntilTheHomePageIsReady) {
    stub.on("Player/Home", StubReply{.body = home.document("<style>body{background:#1c4a6e}</style>")});
    QFile film(filmWithTwoAudioTracks());
    ASSERT_TRUE(film.open(QIODevice::ReadOnly));
    stub.on("film.mkv", StubService::bytesWithRanges(film.readAll()));
    session.start({QStringLiteral("/not this one"), stub.baseUrl() + QStringLiteral("film.mkv")});
    ASSERT_TRUE(waitUntil([this] { return session.isHomeShown(); }, 20s));
    letPass(200ms);
    EXPECT_TRUE(session.lookups().isEmpty()) << "nobody has said that the page is ready";
    EXPECT_FALSE(Screen::drop({QUrl::fromLocalFile(shortFilm())}, session.content().center()));
    home.send({"app:///Execute/EnableDraggableHomeScreen", "app:///Execute/EnableDraggableHomeScreen"});
    ASSERT_TRUE(waitUntil([this] { return session.isFilmPlaying(); })) << program.log().toStdString();
    EXPECT_EQ(session.lookups().size(), 1) << "taken once";
    EXPECT_THAT(session.lookups().value(0).body.toStdString(), testing::HasSubstr("&fileName=(null)&"));
    EXPECT_TRUE(waitUntil([this] { return Screen::colorCount(session.content()) > 200; })) << "its picture";
    pressKey(QStringLiteral("ctrl+q"));
    ASSERT_TRUE(program.waitForEnd());
    EXPECT_EQ(program.exitStatus(), 0);
    program.expectOnlyLogLines();
}

/// What lies on a desktop during anamorphicFilm() with a page that has a square in its corner.
struct FilmOnScreen {
    static inline const QColor squareColor = QColor(0xb4, 0x14, 0x82);
    qsizetype squarePixels = 0;  ///< of 60 by 60
    qsizetype pictureColors = 0; ///< different ones, in a piece of the picture

    bool isBarBlack = false; ///< above the picture

    static FilmOnScreen of(const QImage &screen) {
        FilmOnScreen seen;
        QPoint corner;
        for (int y = screen.height() - 1; y >= 0; --y) {
            for (int x = screen.width() - 1; x >= 0; --x) {
                if (screen.pixelColor(x, y) != squareColor)
                    continue;
                corner = {x, y};
                ++seen.squarePixels;
            }
        }
        seen.isBarBlack = colors(screen, {corner + QPoint(100, 0), QSize(300, 80)}) == QSet{qRgb(0, 0, 0)};
        seen.pictureColors = colors(screen, {corner + QPoint(100, 100), QSize(300, 60)}).size();
        return seen;
    }
    static QSet<QRgb> colors(const QImage &screen, const QRect &piece) {
        QSet<QRgb> found;
        for (int y = piece.top(); y <= piece.bottom(); ++y) {
            for (int x = piece.left(); x <= piece.right(); ++x)
                found.insert(screen.pixel(x, y));
        }
        return found;
    }
};

class StartOnDesktop : public Starting, public testing::WithParamInterface<bool> {
  protected:
    [[nodiscard]] QImage picture(const QString &display) const {
        const QString path = program.path(QStringLiteral("screen.png"));
        run(QStringLiteral("import"),
            {QStringLiteral("-display"), display, QStringLiteral("-window"), QStringLiteral("root"), path});
        return QImage(path).convertToFormat(QImage::Format_RGB32);
    }
};

TEST_P(StartOnDesktop, ShowsThePictureAndThePageOverIt) {
    stub.on("Player/Play", StubReply{.body = "<body style='margin:0'><div style='position:fixed;left:0;top:0;"
                                             "width:60px;height:60px;background:#b41482'></div>"});
    const bool isComposited = GetParam(); // as this desktop is; one of its own for the other case
    if (isComposited) {
        session.start({anamorphicFilm()});
    } else {
        program.removeVariable("MURVO_VIRTUAL_DESKTOP");
        program.setVariable("MURVO_BASE_URL", stub.baseUrl());
        program.startBy(QStringLiteral(MURVO_VIRTUAL_DESKTOP),
                        {QStringLiteral("--announce"), QStringLiteral("--no-compositor")},
                        {anamorphicFilm()});
    }
    ASSERT_TRUE(waitUntil([this] { return !program.logged("Done analyzing video").isEmpty(); }, 20s))
        << program.log().toStdString();
    const QString display =
        isComposited ? qEnvironmentVariable("DISPLAY")
                     : program.log().section(QStringLiteral("It is display "), 1).section(u',', 0, 0);
    FilmOnScreen seen;
    EXPECT_TRUE(waitUntil([&] {
        seen = FilmOnScreen::of(picture(display));
        return seen.squarePixels == 3600 && seen.pictureColors > 50 && seen.isBarBlack;
    })) << seen.squarePixels
        << ' ' << seen.pictureColors << ' ' << seen.isBarBlack;
    program.terminate();
    ASSERT_TRUE(program.waitForEnd());
    EXPECT_EQ(program.exitStatus(), 0) << program.log().toStdString();
}

INSTANTIATE_TEST_SUITE_P(CompositedAndNot, StartOnDesktop, testing::Bool());

} // namespace murvo::test
