// SPDX-License-Identifier: GPL-3.0-or-later
// The program itself as a process: how it starts, what it says, how it ends.

#include "support/StubService.h"
#include "support/Wait.h"
#include "support/XTools.h"

#include "support/TestFilms.h"

#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace murvo::test {

using namespace std::chrono_literals;

class Program : public testing::Test {
  protected:
    void start(const QStringList &arguments, const QString &baseUrl = {}) {
        start(QStringLiteral(MURVO_PROGRAM), arguments, baseUrl);
    }
    void start(const QString &program, const QStringList &arguments, const QString &baseUrl) {
        environment.insert(QStringLiteral("XDG_DATA_HOME"), folder.path());
        environment.remove(QStringLiteral("MURVO_BASE_URL"));
        if (!baseUrl.isNull())
            environment.insert(QStringLiteral("MURVO_BASE_URL"), baseUrl);
        process.setProcessEnvironment(environment);
        process.start(program, arguments);
        ASSERT_TRUE(process.waitForStarted());
    }

    void readLog() { log += QString::fromUtf8(process.readAllStandardError()); }

    [[nodiscard]] bool waitForLog(const QString &text) {
        return waitUntil(
            [&] {
                readLog();
                return log.contains(text);
            },
            20s);
    }

    /// The program's, as the window manager lists them: one a line.
    [[nodiscard]] static QStringList windows() {
        // wmctrl fails as long as there has been no window at all.
        return run(QStringLiteral("sh"), {QStringLiteral("-c"), QStringLiteral("wmctrl -l || true")})
            .split(u'\n')
            .filter(QStringLiteral("Murvo"));
    }

    [[nodiscard]] bool waitForEnd() {
        return waitUntil([this] { return process.state() == QProcess::NotRunning; });
    }

    /// Every line is the program's or the web engine's log line.
    void expectOnlyLogLines() {
        readLog();
        static const QRegularExpression own(QStringLiteral(
            "^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3} (debug|info|warning|critical) [\\w.-]+: "));
        static const QRegularExpression engine(
            QStringLiteral("^\\[\\d+:\\d+:\\d+/\\d+\\.\\d+:[A-Z]+:.*\\] "));
        const QStringList lines = log.split(u'\n', Qt::SkipEmptyParts);
        for (const QString &line : lines)
            EXPECT_TRUE(line.contains(own) || line.contains(engine)) << line.toStdString();
    }

    QTemporaryDir folder; // before the process that uses it
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QProcess process;
    QString log;
};

TEST_F(Program, RefusesABaseUrlWithoutASlashAndUnknownOptions) {
    start({}, QStringLiteral("http://127.0.0.1:1"));
    ASSERT_TRUE(waitForEnd());
    readLog();
    EXPECT_EQ(process.exitCode(), 2);
    EXPECT_EQ(
        log.split(u'\n', Qt::SkipEmptyParts).filter(QStringLiteral("MURVO_BASE_URL must end in")).size(), 1);
    start({QStringLiteral("--no-such-option")});
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(process.exitCode(), 2);
    start({QStringLiteral("--help")});
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_TRUE(process.readAllStandardOutput().startsWith("Usage: murvo"));
}

TEST_F(Program, SaysThatItsServiceCannotStartAndEndsAsFailed) {
    QFile inTheWay(folder.filePath(QStringLiteral("murvo")));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    start({});
    ASSERT_TRUE(waitUntil([] { return windows().size() == 1; }, 20s)) << "the message";
    run(QStringLiteral("wmctrl"), {QStringLiteral("-c"), QStringLiteral("Murvo")});
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 1);
    readLog();
    EXPECT_EQ(log.split(u'\n', Qt::SkipEmptyParts).filter(QStringLiteral("murvo: ")).size(), 1)
        << log.toStdString();
}

TEST_F(Program, PlaysAFilmWithItsOwnServiceAndEndsInOrderOnSigterm) {
    start({silentFilm()});
    ASSERT_TRUE(waitForLog(QStringLiteral("Done analyzing video: found 0 subtitles to download")))
        << log.toStdString();
    ASSERT_TRUE(waitUntil([] { return stacking().size() == 3; }))
        << "the main window, the video's, the page's";
    process.terminate();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 0);
    expectOnlyLogLines();
    EXPECT_TRUE(log.trimmed().endsWith(QLatin1String("Ended in order"))) << log.toStdString();
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

class ProgramOnDesktop : public Program, public testing::WithParamInterface<bool> {
  protected:
    [[nodiscard]] QImage picture(const QString &display) const {
        const QString path = folder.filePath(QStringLiteral("screen.png"));
        run(QStringLiteral("import"),
            {QStringLiteral("-display"), display, QStringLiteral("-window"), QStringLiteral("root"), path});
        return QImage(path).convertToFormat(QImage::Format_RGB32);
    }
};

TEST_P(ProgramOnDesktop, ShowsThePictureAndThePageOverIt) {
    StubService stub;
    stub.on("Player/Home", {.body = "<script>location.href='app:///Execute/EnableDraggableHomeScreen'"
                                    "</script>"});
    stub.on("Api/MovieFile/GetSubtitlesToDownload", {.contentType = "application/json", .body = "{}"});
    stub.on("Player/Play", {.body = "<body style='margin:0'><div style='position:fixed;left:0;top:0;"
                                    "width:60px;height:60px;background:#b41482'></div>"});
    QStringList words = {QStringLiteral("--announce")};
    if (!GetParam())
        words.append(QStringLiteral("--no-compositor"));
    environment.remove(QStringLiteral("MURVO_VIRTUAL_DESKTOP")); // a new one, not this one
    start(QStringLiteral(MURVO_VIRTUAL_DESKTOP),
          words + QStringList{QStringLiteral(MURVO_PROGRAM), anamorphicFilm()}, stub.baseUrl());
    ASSERT_TRUE(waitForLog(QStringLiteral("Done analyzing video"))) << log.toStdString();
    const QString display = log.section(QStringLiteral("It is display "), 1).section(u',', 0, 0);
    FilmOnScreen seen;
    EXPECT_TRUE(waitUntil([&] {
        seen = FilmOnScreen::of(picture(display));
        return seen.squarePixels == 3600 && seen.pictureColors > 50 && seen.isBarBlack;
    })) << seen.squarePixels
        << ' ' << seen.pictureColors << ' ' << seen.isBarBlack;
    process.terminate();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(process.exitCode(), 0) << log.toStdString();
}

INSTANTIATE_TEST_SUITE_P(CompositedAndNot, ProgramOnDesktop, testing::Bool());

TEST_F(Program, UsesAnotherServiceAsItStandsAndEndsByItsWindow) {
    StubService stub;
    stub.on("base/Player/Home", StubReply{.body = "<title>no command</title>"});
    start({}, stub.baseUrl() + QStringLiteral("base/"));
    ASSERT_TRUE(waitUntil([&] { return !stub.requestsTo("base/Player/Home").isEmpty(); }, 20s));
    EXPECT_EQ(stub.requests().first().target, "/base/Player/Home");
    ASSERT_TRUE(waitUntil([&] { return windows().size() == 1; }));
    run(QStringLiteral("wmctrl"), {QStringLiteral("-c"), QStringLiteral("Murvo")});
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(process.exitCode(), 0);
    expectOnlyLogLines();
}

} // namespace murvo::test
