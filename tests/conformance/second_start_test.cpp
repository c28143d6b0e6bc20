// SPDX-License-Identifier: GPL-3.0-or-later
// A second start of the program, and many films in a short time.

#include "conformance/Screen.h"
#include "conformance/Session.h"
#include "support/TestFilms.h"
#include "support/Wait.h"
#include "support/XTools.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QWidget>

#include <gmock/gmock.h>

namespace murvo::test {

using namespace std::chrono_literals;
using testing::HasSubstr;

namespace {

/// Films of different names and contents, each with one subtitle that only its own lookup offers.
class ManyFilms {
  public:
    explicit ManyFilms(const QString &folder) {
        for (int i = 0; i < count; ++i) {
            const QString path = folder + QStringLiteral("/film %1.mkv").arg(i);
            QFile::copy(shortFilm(), path);
            QFile file(path);
            if (!file.open(QIODevice::Append))
                qFatal("no film could be made");
            file.write(QByteArray(i + 1, '\0')); // another size, and so another film
            paths.append(path);
        }
    }

    static void serve(StubService &stub) {
        stub.on(Session::lookupPath, [&stub](const RecordedRequest &request) {
            const QByteArray number = request.body.split('.').first().split(' ').last();
            return StubReply{.contentType = "application/json",
                             .body = R"({"videoId":)" + number + R"(,"subsToDownload":[{"downloadUrl":")" +
                                     stub.baseUrl().toLatin1() + "subtitle?of=" + number +
                                     R"(","mustBeDownloaded":true,"subFileName":"s.srt","subtitleId":)" +
                                     number + "}]}"};
        });
        stub.on("subtitle", [](const RecordedRequest &request) {
            return StubReply{.body = "the subtitle of " + request.target.split('=').last()};
        });
    }

    static constexpr int count = 12;
    QStringList paths;
};

} // namespace

class SecondStart : public Running {
  protected:
    [[nodiscard]] QByteArrayList filmsLookedUp() const {
        QByteArrayList names;
        const QList<RecordedRequest> lookups = session.lookups();
        for (const RecordedRequest &lookup : lookups)
            names.append(lookup.body.split('=').value(3).split('&').first());
        return names;
    }
    /// In the file dialog, as a person who knows the path.
    void openByMenu(const QString &path) {
        pressKey(QStringLiteral("ctrl+o"));
        ASSERT_TRUE(
            waitUntil([this] { return program.dialog().exists() && XWindow::active() == program.dialog(); }));
        typeInstead(path);
        pressKey(QStringLiteral("Return"));
        ASSERT_TRUE(waitUntil([this] { return !program.dialog().exists(); }));
    }
};

TEST_F(SecondStart, HandsItsFilmOverWhichWaitsForThePageAtHomeAndUnderAFilm) {
    const QFileInfo first(shortFilm());
    EXPECT_EQ(program.startAgain({first.fileName()}, first.path()), 0) << "a path from its own folder";
    letPass(300ms);
    EXPECT_TRUE(session.lookups().isEmpty()) << "the page has not said that it is ready";
    home.send("app:///Execute/EnableDraggableHomeScreen");
    ASSERT_TRUE(waitUntil([this] { return session.isFilmPlaying(); })) << program.log().toStdString();

    player.forget();
    EXPECT_EQ(program.startAgain({silentFilm()}), 0);
    EXPECT_EQ(program.startAgain({filmWithTwoAudioTracks()}), 0);
    home.send("app:///Execute/EnableDraggableHomeScreen");
    ASSERT_TRUE(waitUntil([this] { return filmsLookedUp().size() == 2 && session.isFilmPlaying(); }));
    EXPECT_EQ(filmsLookedUp(), (QByteArrayList{"short.mkv", "two-tracks.mkv"})) << "the latest that waited";
}

TEST_F(SecondStart, BringsTheRunningProgramToTheFront) {
    session.playFilm(filmWithTwoAudioTracks());
    QWidget other;
    other.setGeometry(program.mainWindow().geometry());
    other.show();
    ASSERT_TRUE(waitUntil([&] { return XWindow::active() == XWindow(static_cast<quint32>(other.winId())); }));
    EXPECT_EQ(program.startAgain({}), 0);
    EXPECT_TRUE(waitUntil([this] { return XWindow::active() == program.pageWindow(); }));
    EXPECT_TRUE(waitUntil([this] { return Screen::colorCount(session.content()) > 200; })) << "its picture";

    program.mainWindow().minimise();
    ASSERT_TRUE(waitUntil([this] { return !program.mainWindow().isViewable(); }));
    EXPECT_EQ(program.startAgain({}), 0);
    EXPECT_TRUE(waitUntil([this] { return program.mainWindow().isViewable(); }));
}

TEST_F(SecondStart, TheLastOfTwelveFilmsInTenSecondsPlaysAlone) {
    const ManyFilms films(program.path(QString()));
    ManyFilms::serve(stub);
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < ManyFilms::count; ++i) {
        const QString &path = films.paths[i];
        ASSERT_TRUE(waitUntil([&] { return program.logged("Analyzing video...").size() == i; }));
        switch (i % 4) {
        case 0:
        case 3:
            EXPECT_EQ(program.startAgain({path}), 0);
            home.send("app:///Execute/EnableDraggableHomeScreen");
            break;
        case 1:
            ASSERT_TRUE(waitUntil([this] { return session.isFilmShown(); })) << "to drop the next on";
            EXPECT_TRUE(Screen::drop({QUrl::fromLocalFile(path)}, session.content().center()));
            break;
        default:
            openByMenu(path);
        }
    }
    // Seven to eight seconds on two cores with nothing else to do.
    RecordProperty("elapsedMs", static_cast<int>(clock.elapsed()));

    ASSERT_TRUE(waitUntil([this] {
        return !session.playerPages().isEmpty() &&
               session.playerPages().last().target.endsWith("videoId=11") && session.isFilmPlaying();
    })) << program.log().toStdString();
    EXPECT_EQ(program.logged("Analyzing video...").size(), ManyFilms::count);
    const QList<RecordedRequest> uploads = session.uploads();
    for (const RecordedRequest &upload : uploads) {
        const QByteArray number = upload.body.split('"').value(1);
        EXPECT_EQ(upload.body.count("the subtitle of "), 1) << upload.body.toStdString();
        EXPECT_THAT(upload.body.toStdString(), HasSubstr("the subtitle of " + number.toStdString() + "\r\n"));
    }
    EXPECT_FALSE(program.dialog().exists());
    EXPECT_EQ(program.windows().size(), 3);
    const qsizetype pages = session.playerPages().size();
    EXPECT_FALSE(waitUntil([&] { return session.playerPages().size() > pages; }, 500ms)) << "a stray film";
}

class SecondStartOfOwn : public Starting {};

TEST_F(SecondStartOfOwn, IsTakenAtOnceByTheOwnHomePageAndACrashBlocksNobody) {
    program.start({silentFilm()});
    const auto films = [this] { return program.logged("Analyzing video...").size(); };
    ASSERT_TRUE(waitUntil([this] { return session.isFilmShown(); }, 20s)) << program.log().toStdString();
    EXPECT_EQ(program.startAgain({shortFilm()}), 0);
    EXPECT_TRUE(waitUntil([&] { return films() == 2; }, 2s)) << "the page lies hidden under a film";

    program.kill();
    ASSERT_TRUE(program.waitForEnd());
    program.start({shortFilm()});
    EXPECT_TRUE(waitUntil([this] { return session.isFilmShown(); }, 20s)) << program.log().toStdString();
    session.end();
}

} // namespace murvo::test
