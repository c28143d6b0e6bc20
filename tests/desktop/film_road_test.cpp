// SPDX-License-Identifier: GPL-3.0-or-later
// From a film taken in to the first picture: what goes over the wire, what is logged, what the person sees.

#include "app/Classes/MDragReceiverWebView.h"
#include "app/Classes/MKeyableWindow.h"
#include "app/Classes/OSHashAlgorithm.h"
#include "app/Media/VLCMediaPlayer.h"
#include "app/Platform/MainWindow.h"
#include "app/ViewControllers/LoaderViewController.h"
#include "app/ViewControllers/WebViewController.h"
#include "support/LogCapture.h"
#include "support/PlayerFixture.h"
#include "support/TestFilms.h"
#include "support/Wait.h"

#include <QFileInfo>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <algorithm>
#include <random>

namespace murvo::test {

using namespace std::chrono_literals;

namespace {

const QByteArray lookupPath = "Api/MovieFile/GetSubtitlesToDownload";
const QByteArray uploadPath = "Api/Subtitles/UploadGzippedFiles";

StubReply json(const QByteArray &text) {
    return {.contentType = "application/json", .body = text};
}

} // namespace

class FilmRoad : public PlayerFixture {
  protected:
    /// An entry of the lookup's reply for the stub's own path.
    [[nodiscard]] QByteArray entry(const QByteArray &path, int id, const QByteArray &name) const {
        return "{\"downloadUrl\":\"" + stub.baseUrl().toUtf8() + path +
               "\",\"mustBeDownloaded\":true,\"subFileName\":\"" + name +
               "\",\"subtitleId\":" + QByteArray::number(id) + "}";
    }

    void takeInAndExpectAlert(const QString &message, const QString &informativeText) {
        delegate->processVideoAndLaunch(shortFilm());
        ASSERT_TRUE(waitUntil([] { return alert() != nullptr; }));
        EXPECT_EQ(alert()->text(), message);
        EXPECT_EQ(alert()->informativeText(), informativeText);
        EXPECT_EQ(alert()->icon(), QMessageBox::Warning);
        ASSERT_EQ(alert()->buttons().size(), 1);
        alert()->button(QMessageBox::Ok)->click();
        EXPECT_TRUE(waitUntil([this] { return alert() == nullptr && isHomeShown(); }));
    }

    QTemporaryDir folder;
};

TEST_F(FilmRoad, ShowsTheLoaderAndAsksWithTheExactForm) {
    ASSERT_NO_FATAL_FAILURE(startAtHome());
    stub.on(lookupPath, StubReply{.isHeld = true});
    const QString film = folder.filePath(QStringLiteral("My \"Film\" a&b=c 100%.mkv"));
    ASSERT_TRUE(QFile::copy(shortFilm(), film));
    delegate->processVideoAndLaunch(film);
    EXPECT_FALSE(delegate->homeWebViewController()->view()->isVisible());
    EXPECT_EQ(delegate->loaderViewController()->labelText(), QStringLiteral("Searching subtitles..."));
    EXPECT_FALSE(delegate->loaderViewController()->isLabelHidden());

    ASSERT_TRUE(waitUntil([this] { return !stub.requestsTo(lookupPath).isEmpty(); }));
    const RecordedRequest request = stub.requestsTo(lookupPath).first();
    const QByteArray size = QByteArray::number(QFileInfo(film).size());
    EXPECT_EQ(request.method, "POST");
    EXPECT_THAT(request.head.toStdString(),
                testing::HasSubstr("Content-type: application/x-www-form-urlencoded\r\n"));
    EXPECT_THAT(request.body.toStdString(),
                testing::MatchesRegex("fileSize=" + size.toStdString() +
                                      "&movieHash=[0-9a-f]+&fileName=My \"Film\" "
                                      "a&b=c 100%.mkv&targetLanguageCode=eng&nativeLanguageCode=fra"));
    EXPECT_EQ(request.header("Content-length"), QByteArray::number(request.body.size()));
}

TEST_F(FilmRoad, CountsCharactersNotBytesInTheLookupsLength) {
    ASSERT_NO_FATAL_FAILURE(startAtHome());
    const QString film = folder.filePath(QStringLiteral("Été.mkv"));
    ASSERT_TRUE(QFile::copy(shortFilm(), film));
    delegate->processVideoAndLaunch(film);
    ASSERT_TRUE(waitUntil([this] { return !stub.requestsTo(lookupPath).isEmpty(); }));
    const RecordedRequest request = stub.requestsTo(lookupPath).first();
    EXPECT_EQ(request.header("Content-length").toInt(), request.body.size());
    EXPECT_TRUE(request.body.endsWith("&nativeLanguageCode=f"))
        << "two letters outside ASCII, two bytes too few";
}

TEST_F(FilmRoad, FetchesTheFilesUploadsThemAndPlays) {
    ASSERT_NO_FATAL_FAILURE(startAtHome());
    const LogCapture log;
    stub.on(lookupPath,
            json("{\"videoId\":-2,\"subsToDownload\":[" + entry("a", 11, "a.srt") + "," +
                 entry("b", 12, "b.srt") + "," + entry("c", 13, R"(c \"q\".srt)") +
                 ",{\"downloadUrl\":\"http://[bad\",\"mustBeDownloaded\":true,\"subtitleId\":14}]}"));
    stub.on("a", {.contentType = "text/plain", .body = "first"});
    stub.on("b", {.status = 404, .body = "not this"});
    stub.on("c", {.contentType = "text/plain", .body = ""});
    delegate->processVideoAndLaunch(shortFilm());
    ASSERT_TRUE(waitUntil([this] { return isFilmShown() && delegate->player()->isPlaying(); }));

    ASSERT_EQ(stub.requestsTo(uploadPath).size(), 1);
    const RecordedRequest upload = stub.requestsTo(uploadPath).first();
    const QByteArray type = upload.header("Content-Type");
    ASSERT_TRUE(type.startsWith("multipart/form-data; boundary="));
    const QByteArray boundary = type.mid(30);
    EXPECT_EQ(boundary.size(), 64);
    const QByteArray partA = "Content-Disposition: form-data; name=\"11\"; filename=\"a.srt\"\r\n\r\nfirst";
    const QByteArray partC = "Content-Disposition: form-data; name=\"13\"; filename=\"c \"q\".srt\"\r\n\r\n";
    const QByteArray end = "\r\n--" + boundary + "--\r\n";
    const QByteArray between = "\r\n--" + boundary + "\r\n";
    // The fetches run at the same time: whichever ends first comes first.
    EXPECT_THAT((std::vector<QByteArray>{"--" + boundary + "\r\n" + partA + between + partC + end,
                                         "--" + boundary + "\r\n" + partC + between + partA + end}),
                testing::Contains(upload.body));
    EXPECT_EQ(upload.header("Content-Length"), QByteArray::number(upload.body.size()));

    const QStringList lines =
        log.linesBeginningWith({QStringLiteral("Analyzing"), QStringLiteral("Done"),
                                QStringLiteral("Finished"), QStringLiteral("Successfully")});
    ASSERT_EQ(lines.size(), 7);
    EXPECT_EQ(lines[0], QStringLiteral("Analyzing video..."));
    EXPECT_EQ(lines[1], QStringLiteral("Done analyzing video: found 4 subtitles to download"));
    for (int i = 0; i < 4; ++i) {
        EXPECT_TRUE(lines[2 + i].startsWith(QStringLiteral("Finished downloading subtitles at http://")));
        EXPECT_TRUE(lines[2 + i].endsWith(QStringLiteral(" - Remaining: %1 subs").arg(3 - i)));
    }
    EXPECT_EQ(lines[6], QStringLiteral("Successfully uploaded all downloaded subtitles"));
    ASSERT_TRUE(waitUntil([this] { return !stub.requestsTo("Player/Play").isEmpty(); }));
    EXPECT_EQ(stub.requestsTo("Player/Play").first().target, "/Player/Play?videoId=18446744073709551614")
        << "the identifier is sign-extended and printed unsigned";
}

TEST_F(FilmRoad, UploadsEvenNothingAndPlaysWhenTheUploadFails) {
    ASSERT_NO_FATAL_FAILURE(startAtHome());
    const LogCapture log;
    stub.on(lookupPath, json("{\"videoId\":3,\"subsToDownload\":[" + entry("gone", 1, "x.srt") + "]}"));
    stub.on(uploadPath, StubReply{.status = 500});
    delegate->processVideoAndLaunch(shortFilm());
    ASSERT_TRUE(waitUntil([this] { return isFilmShown(); }));
    const RecordedRequest upload = stub.requestsTo(uploadPath).first();
    const QByteArray boundary = upload.header("Content-Type").mid(30);
    EXPECT_EQ(upload.body, "--" + boundary + "\r\n\r\n--" + boundary + "--\r\n");

    // The next upload ends without any status: the one before still counts.
    stub.on(uploadPath, StubReply{.isReset = true});
    delegate->loadHomeScreen();
    delegate->processVideoAndLaunch(shortFilm());
    ASSERT_TRUE(waitUntil([this] { return isFilmShown(); }));
    const QStringList lines =
        log.linesBeginningWith({QStringLiteral("Met an error"), QStringLiteral("Failed to upload")});
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines[0], QStringLiteral("Failed to upload downloaded subtitles"));
    EXPECT_TRUE(lines[1].startsWith(QStringLiteral("Met an error uploading subtitles: ")));
    EXPECT_EQ(lines[2], QStringLiteral("Failed to upload downloaded subtitles"));
}

TEST_F(FilmRoad, EndsInOneAlertAndTheHomeScreenWhenTheLookupFails) {
    ASSERT_NO_FATAL_FAILURE(startAtHome());
    for (const StubReply &bad :
         {StubReply{.status = 404, .body = "{\"videoId\":1}"}, StubReply{.status = 500},
          StubReply{.status = 204}, StubReply{.isReset = true},
          StubReply{.body = "{\"videoId\"", .declaredLength = 5000}}) {
        stub.on(lookupPath, bad);
        ASSERT_NO_FATAL_FAILURE(takeInAndExpectAlert(
            QStringLiteral("Something went wrong."),
            QStringLiteral("We couldn't find subtitles for your video. Please try again later!")));
    }
    EXPECT_TRUE(stub.requestsTo("Player/Play").isEmpty());
    EXPECT_GE(inHomePage(QStringLiteral("events.length")).toInt(), 5) << "each return refreshes the level";

    // And the next film plays.
    stub.on(lookupPath, json("{\"videoId\":1}"));
    delegate->processVideoAndLaunch(shortFilm());
    EXPECT_TRUE(waitUntil([this] { return isFilmShown() && delegate->player()->isPlaying(); }));
}

TEST_F(FilmRoad, PlaysWithAReplyThatIsNoUsableJson) {
    ASSERT_NO_FATAL_FAILURE(startAtHome());
    for (const char *body : {"no json", "[]", R"({"videoId":null,"subsToDownload":[1,{"downloadUrl":7}]})"}) {
        stub.forgetRequests();
        stub.on(lookupPath, json(body));
        delegate->processVideoAndLaunch(shortFilm());
        ASSERT_TRUE(waitUntil([this] { return !stub.requestsTo("Player/Play").isEmpty(); })) << body;
        EXPECT_EQ(stub.requestsTo("Player/Play").first().target, "/Player/Play?videoId=0");
        delegate->loadHomeScreen();
    }
}

TEST_F(FilmRoad, SaysSoWhenAFilmCannotBePlayed) {
    ASSERT_NO_FATAL_FAILURE(startAtHome());
    QFile noFilm(folder.filePath(QStringLiteral("no film.mkv")));
    ASSERT_TRUE(noFilm.open(QIODevice::WriteOnly));
    noFilm.write("short");
    noFilm.close();
    for (const QString &path :
         {noFilm.fileName(), folder.filePath(QStringLiteral("missing.mkv")), folder.path()}) {
        stub.forgetRequests();
        delegate->processVideoAndLaunch(path);
        ASSERT_TRUE(waitUntil([] { return alert() != nullptr; })) << path.toStdString();
        EXPECT_TRUE(stub.requestsTo(lookupPath).first().body.startsWith("fileSize=0&movieHash=0&fileName="));
        EXPECT_EQ(alert()->text(), QStringLiteral("Couldn't open video"));
        EXPECT_TRUE(alert()->informativeText().startsWith(
            QStringLiteral("Murvo failed to open your video - if you feel that we should have been able to "
                           "play this file, please "
                           "report your problem to us at ")));
        alert()->button(QMessageBox::Ok)->click();
        EXPECT_TRUE(waitUntil([this] { return isHomeShown(); }));
    }
}

TEST_F(FilmRoad, SaysSoOnceWhenAFileOpensButHasNothingToSeeOrHear) {
    ASSERT_NO_FATAL_FAILURE(startAtHome());
    const auto written = [this](const QString &name, const QByteArray &bytes) {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return file.fileName();
    };
    QByteArray noise(200'000, Qt::Uninitialized);
    std::generate(noise.begin(), noise.end(),
                  [engine = std::minstd_rand()]() mutable { return static_cast<char>(engine() >> 8U); });
    const QByteArray sentence = "This is a line of a text that is no film.\n";
    for (const QString &path :
         {written(QStringLiteral("long.txt"), sentence.repeated(5000)),
          written(QStringLiteral("short.txt"), sentence.repeated(70)),
          written(QStringLiteral("lines.srt"),
                  QByteArray("1\n00:00:01,000 --> 00:00:09,000\nLine\n\n").repeated(500)),
          written(QStringLiteral("noise.bin"), noise)}) {
        delegate->processVideoAndLaunch(path);
        ASSERT_TRUE(waitUntil([] { return alert() != nullptr; })) << path.toStdString();
        EXPECT_EQ(alert()->text(), QStringLiteral("Couldn't open video"));
        EXPECT_FALSE(delegate->player()->isPlaying());
        alert()->button(QMessageBox::Ok)->click();
        EXPECT_TRUE(waitUntil([this] { return isHomeShown(); }));
        letPass(300ms);
        EXPECT_EQ(alert(), nullptr) << path.toStdString();
    }
}

TEST_F(FilmRoad, WaitsForAFilmThatIsSlowToComeAndEndsItInPeace) {
    ASSERT_NO_FATAL_FAILURE(startAtHome());
    QFile file(shortFilm());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const StubService::Handler bytes = StubService::bytesWithRanges(file.readAll());
    bool isSlow = true;
    stub.on("slow.mkv", [&](const RecordedRequest &request) {
        StubReply reply = bytes(request);
        // The player itself asks for the whole; the hash asks for ranges.
        reply.isHeld = isSlow && request.method == "GET" && request.header("User-Agent").startsWith("Murvo");
        return reply;
    });
    delegate->processVideoAndLaunch(stub.baseUrl() + QStringLiteral("slow.mkv"));
    ASSERT_TRUE(waitUntil([this] { return isFilmShown(); }));
    bool hasEnded = false;
    QObject::connect(delegate->player(), &VLCMediaPlayer::stateChanged, &stub,
                     [&] { hasEnded = hasEnded || delegate->player()->state() == VLCMediaPlayerStateEnded; });
    letPass(4s);
    EXPECT_EQ(alert(), nullptr);
    isSlow = false;
    EXPECT_GE(stub.releaseHeld(), 1);
    EXPECT_TRUE(waitUntil([&] { return hasEnded; }, 20s));
    letPass(300ms);
    EXPECT_EQ(alert(), nullptr);
}

TEST_F(FilmRoad, StreamsAnHttpUrlAndNamesItByThePreference) {
    ASSERT_NO_FATAL_FAILURE(startAtHome());
    QFile file(shortFilm());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray film = file.readAll();
    stub.on("films/v.mkv", StubService::bytesWithRanges(film));
    QSettings().remove(QStringLiteral("file-name"));
    delegate->processVideoAndLaunch(stub.baseUrl() + QStringLiteral("films/v.mkv"));
    ASSERT_TRUE(waitUntil([this] { return isFilmShown() && delegate->player()->isPlaying(); }));
    const QByteArray body = stub.requestsTo(lookupPath).first().body;
    EXPECT_TRUE(body.startsWith("fileSize=" + QByteArray::number(film.size()) + "&movieHash="));
    EXPECT_THAT(body.toStdString(), testing::HasSubstr("&fileName=(null)&"));

    delegate->loadHomeScreen();
    stub.forgetRequests();
    QSettings().setValue(QStringLiteral("file-name"), QStringLiteral("Known.mkv"));
    delegate->processVideoAndLaunch(stub.baseUrl() + QStringLiteral("films/v.mkv"));
    ASSERT_TRUE(waitUntil([this] { return !stub.requestsTo(lookupPath).isEmpty(); }));
    EXPECT_THAT(stub.requestsTo(lookupPath).first().body.toStdString(),
                testing::HasSubstr("&fileName=Known.mkv&"));
    QSettings().remove(QStringLiteral("file-name"));
}

TEST_F(FilmRoad, TriesAHomePageThatDoesNotComeUntilItDoes) {
    int tries = 0;
    stub.on("Player/Home", [&tries](const RecordedRequest &) {
        ++tries;
        if (tries == 1)
            return StubReply{.isReset = true};
        if (tries == 2)
            return StubReply{.status = 204};
        if (tries == 3)
            return StubReply{.status = 503, .body = "<h1>Out of order</h1>"};
        return StubReply{.body =
                             "<script>location.href = 'app:///Execute/EnableDraggableHomeScreen'</script>"};
    });
    delegate->applicationDidFinishLaunching();
    ASSERT_TRUE(waitUntil([&] { return tries == 3; }));
    EXPECT_FALSE(delegate->loaderViewController()->isLabelHidden());
    EXPECT_EQ(delegate->loaderViewController()->labelText(), QStringLiteral("Connecting..."));
    EXPECT_TRUE(waitUntil([this] { return delegate->session().homeScreenLoaded && isHomeShown(); })) << tries;
    EXPECT_EQ(tries, 4);
}

TEST_F(FilmRoad, AnEarlierFilmsRepliesChangeNothing) {
    ASSERT_NO_FATAL_FAILURE(startAtHome());
    // One film waits for its lookup, one for a download, one for its upload, one for its remote hash.
    const QByteArray offer = "{\"videoId\":1,\"subsToDownload\":[" + entry("slow", 1, "slow.srt") + "]}";
    const StubReply held{.body = "late", .isHeld = true};
    stub.on(lookupPath, StubReply{.body = offer, .isHeld = true});
    delegate->processVideoAndLaunch(shortFilm());
    ASSERT_TRUE(waitUntil([this] { return stub.requestsTo(lookupPath).size() == 1; }));
    stub.on(lookupPath, json(offer));
    stub.on("slow", held);
    delegate->processVideoAndLaunch(shortFilm());
    ASSERT_TRUE(waitUntil([this] { return stub.requestsTo("slow").size() == 1; }));
    stub.on("slow", StubReply{.body = "in time"});
    stub.on(uploadPath, held);
    delegate->processVideoAndLaunch(shortFilm());
    ASSERT_TRUE(waitUntil([this] { return stub.requestsTo(uploadPath).size() == 1; }));
    stub.on("remote.mkv", StubReply{.body = QByteArray(70000, 'x'), .isHeld = true});
    delegate->processVideoAndLaunch(stub.baseUrl() + QStringLiteral("remote.mkv"));
    ASSERT_TRUE(waitUntil([this] { return stub.requestsTo("remote.mkv").size() == 1; }));

    stub.on(lookupPath, json("{\"videoId\":2}"));
    delegate->processVideoAndLaunch(filmWithTwoAudioTracks());
    stub.releaseHeld();
    ASSERT_TRUE(waitUntil([this] { return isFilmShown() && delegate->player()->isPlaying(); }));
    stub.releaseHeld();
    // A round trip later everything that was still on its way has arrived.
    ASSERT_TRUE(waitUntil([this] { return stub.requestsTo("Player/Play").size() == 1; }));
    EXPECT_EQ(stub.requestsTo("Player/Play").first().target, "/Player/Play?videoId=2");
    EXPECT_EQ(stub.requestsTo(uploadPath).size(), 1);
    EXPECT_EQ(stub.requestsTo(lookupPath).size(), 4) << "the remote film is not looked up any more";
    EXPECT_EQ(alert(), nullptr);
}

TEST_F(FilmRoad, APageOfAFilmThatIsOverCommandsNothing) {
    ASSERT_NO_FATAL_FAILURE(startFilm(filmWithTwoAudioTracks()));
    // Sent while the film shows, handled when the home screen is back.
    std::ignore = inPlayerPage(QStringLiteral("ask('app:///Execute/Play'); 1"));
    delegate->loadHomeScreen();
    homePageSends(QStringLiteral("app:///Execute/Play"));
    stub.forgetRequests();
    homePageSends(QStringLiteral("app:///Execute/EnableDraggableHomeScreen"));
    letPass(200ms);
    EXPECT_FALSE(delegate->player()->isPlaying()) << "no sound under the home screen";
    EXPECT_TRUE(isHomeShown());
}

TEST_F(FilmRoad, AFilmFromTheShellWaitsForTheHomePage) {
    delegate->applicationOpenFile(QStringLiteral("/not this one"));
    delegate->applicationOpenFile(shortFilm());
    delegate->applicationDidFinishLaunching();
    ASSERT_TRUE(waitUntil([this] { return isFilmShown() && delegate->player()->isPlaying(); }));
    ASSERT_EQ(stub.requestsTo(lookupPath).size(), 1);
    delegate->loadHomeScreen();

    // With the page ready it waits for the page's next word.
    delegate->applicationOpenFile(shortFilm());
    letPass(200ms);
    EXPECT_EQ(stub.requestsTo(lookupPath).size(), 1);
    homePageSends(QStringLiteral("app:///Execute/EnableDraggableHomeScreen"));
    EXPECT_TRUE(waitUntil([this] { return stub.requestsTo(lookupPath).size() == 2 && isFilmShown(); }));
}

} // namespace murvo::test
