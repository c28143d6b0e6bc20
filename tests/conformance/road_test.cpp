// SPDX-License-Identifier: GPL-3.0-or-later
// From a film taken in to the first picture: what goes over the wire, what is logged, what is on the screen.

#include "conformance/Screen.h"
#include "conformance/Session.h"
#include "support/TestFilms.h"
#include "support/Wait.h"
#include "support/XTools.h"

#include <QFile>
#include <QFileInfo>

#include <gmock/gmock.h>

#include <algorithm>
#include <random>

namespace murvo::test {

using namespace std::chrono_literals;

namespace {

const QString lookupMessage = QStringLiteral("Something went wrong.");
const QString lookupAdvice =
    QStringLiteral("We couldn't find subtitles for your video. Please try again later!");
const QString filmMessage = QStringLiteral("Couldn't open video");
const QString filmAdvice =
    QStringLiteral("Murvo failed to open your video - if you feel that we should have been able to play this "
                   "file, please report your problem to us at support@murvo.example");

StubReply json(const QByteArray &text) {
    return {.contentType = "application/json", .body = text};
}

QByteArray read(const QString &path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

/// Bytes whose words overflow when summed.
QByteArray noise(qsizetype size) {
    QByteArray bytes(size, Qt::Uninitialized);
    std::generate(bytes.begin(), bytes.end(),
                  [engine = std::minstd_rand()]() mutable { return static_cast<char>(engine() >> 8U); });
    return bytes;
}

/// How a lookup of the film begins, by the definition of the movie hash.
std::string sizeAndHash(const QByteArray &film) {
    constexpr qsizetype block = 65536;
    auto hash = static_cast<quint64>(film.size());
    for (const QByteArray &end : {film.left(block), film.right(block)}) {
        for (int i = 0; i < end.size(); ++i)
            hash += static_cast<quint64>(static_cast<quint8>(end[i])) << (8 * (i % 8));
    }
    const bool isHashed = film.size() >= block;
    return "fileSize=" + std::to_string(isHashed ? film.size() : 0) +
           "&movieHash=" + QByteArray::number(isHashed ? hash : 0, 16).toStdString() + "&fileName=";
}

} // namespace

class Road : public Running {
  protected:
    void takeIn(const QString &path) {
        player.forget();
        ASSERT_TRUE(Screen::drop({QUrl::fromLocalFile(path)}, session.content().center()));
    }
    [[nodiscard]] bool waitForLookups(qsizetype count) const {
        return waitUntil([=, this] { return session.lookups().size() >= count; });
    }
    [[nodiscard]] std::string lookup(qsizetype index) const {
        return session.lookups().value(index).body.toStdString();
    }
    [[nodiscard]] bool waitForFilm() const {
        return waitUntil([this] { return session.isFilmPlaying(); });
    }
    [[nodiscard]] QString fileWith(const QString &name, const QByteArray &bytes) const {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return file.fileName();
    }
    /// The film under another name.
    [[nodiscard]] QString named(const QString &name, const QString &film = shortFilm()) const {
        EXPECT_TRUE(QFile::link(film, folder.filePath(name)));
        return folder.filePath(name);
    }
    /// An entry of the lookup's reply for the stub's own path.
    [[nodiscard]] QByteArray entry(const QByteArray &path, int id, const QByteArray &name) const {
        return R"({"downloadUrl":")" + stub.baseUrl().toUtf8() + path +
               R"(","mustBeDownloaded":true,"subFileName":")" + name + R"(","subtitleId":)" +
               QByteArray::number(id) + "}";
    }
    /// Methods and ranges of what was asked of the path; not by the media library, which names the program.
    [[nodiscard]] QStringList hashRequests(const QByteArray &path) const {
        QStringList found;
        const QList<RecordedRequest> all = stub.requestsTo(path);
        for (const RecordedRequest &request : all) {
            if (!request.header("User-Agent").startsWith("Murvo"))
                found.append(QString::fromLatin1(request.method + ' ' + request.header("Range")).trimmed());
        }
        found.removeDuplicates(); // the HTTP client repeats a request whose connection is lost
        return found;
    }

    QTemporaryDir folder;
};

TEST_F(Road, AsksWithTheExactFormUnderTheLoader) {
    stub.on(Session::lookupPath, StubReply{.status = 200, .isHeld = true});
    ASSERT_NO_FATAL_FAILURE(takeIn(named(QStringLiteral("My \"Film\" a&b=c 100%.mkv"))));
    ASSERT_TRUE(waitForLookups(1));
    const RecordedRequest request = session.lookups().first();
    EXPECT_EQ(request.method, "POST");
    EXPECT_THAT(request.head.toStdString(),
                testing::HasSubstr("Content-type: application/x-www-form-urlencoded\r\n"));
    EXPECT_EQ(request.body.toStdString(),
              sizeAndHash(read(shortFilm())) +
                  "My \"Film\" a&b=c 100%.mkv&targetLanguageCode=eng&nativeLanguageCode=fra");
    EXPECT_EQ(request.header("Content-length"), QByteArray::number(request.body.size()));
    EXPECT_TRUE(waitUntil([this] { return session.showsLoader(QStringLiteral("Searching subtitles...")); }));
    EXPECT_FALSE(session.isHomeShown());
    EXPECT_FALSE(Screen::drop({QUrl::fromLocalFile(shortFilm())}, session.content().center()))
        << "nothing can be dropped on the loader";
    stub.releaseHeld();
    EXPECT_TRUE(waitForFilm()) << "an empty reply is no obstacle";
}

TEST_F(Road, CountsCharactersNotBytesInTheLookupsLength) {
    ASSERT_NO_FATAL_FAILURE(takeIn(named(QStringLiteral("Été.mkv"))));
    ASSERT_TRUE(waitForLookups(1));
    const RecordedRequest request = session.lookups().first();
    EXPECT_EQ(request.header("Content-length").toInt(), request.body.size());
    EXPECT_TRUE(request.body.endsWith("&nativeLanguageCode=f"))
        << "two letters outside ASCII, two bytes too few";
    EXPECT_TRUE(waitForFilm());
}

TEST_F(Road, FetchesTheFilesUploadsThemAndPlays) {
    stub.on(Session::lookupPath,
            json(R"({"videoId":-2,"subsToDownload":[{"mustBeDownloaded":true,"subtitleId":9},)" +
                 entry("moved", 11, "a.srt") + "," + entry("b", 12, "b.srt") + "," +
                 entry("c", 13, R"(c \"q\".srt)") + "," + entry("reset", 15, "r.srt") +
                 R"(,{"downloadUrl":"http://[bad","mustBeDownloaded":true,"subtitleId":14}]})"));
    stub.on("moved", {.status = 302, .extraHeaders = {"Location: /a"}});
    stub.on("a", {.contentType = "text/plain", .body = "first"});
    stub.on("b", {.status = 404, .body = "not this"});
    stub.on("c", {.contentType = "text/plain", .body = ""});
    stub.on("reset", StubReply{.isReset = true});
    ASSERT_NO_FATAL_FAILURE(takeIn(shortFilm()));
    ASSERT_TRUE(waitForFilm());

    ASSERT_EQ(session.uploads().size(), 1);
    const RecordedRequest upload = session.uploads().first();
    const QByteArray type = upload.header("Content-Type");
    ASSERT_TRUE(type.startsWith("multipart/form-data; boundary="));
    const QByteArray boundary = type.mid(30);
    EXPECT_THAT(boundary.toStdString(), testing::MatchesRegex("[a-zA-Z0-9]+"));
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
        program.logged(QStringList{QStringLiteral("Analyzing"), QStringLiteral("Done"),
                                   QStringLiteral("Finished"), QStringLiteral("Success")});
    ASSERT_EQ(lines.size(), 8) << program.log().toStdString();
    EXPECT_EQ(lines[0], QStringLiteral("Analyzing video..."));
    EXPECT_EQ(lines[1], QStringLiteral("Done analyzing video: found 5 subtitles to download"));
    for (int i = 0; i < 5; ++i) {
        EXPECT_TRUE(lines[2 + i].startsWith(QStringLiteral("Finished downloading subtitles at http://")));
        EXPECT_TRUE(lines[2 + i].endsWith(QStringLiteral(" - Remaining: %1 subs").arg(4 - i)));
    }
    EXPECT_EQ(lines[7], QStringLiteral("Successfully uploaded all downloaded subtitles"));
    EXPECT_EQ(session.playerPages().value(0).target, "/Player/Play?videoId=18446744073709551614")
        << "the identifier is sign-extended and printed unsigned";
}

TEST_F(Road, UploadsEvenNothingAndPlaysWhenTheUploadFails) {
    stub.on(Session::lookupPath,
            json("{\"videoId\":3,\"subsToDownload\":[" + entry("gone", 1, "x.srt") + "]}"));
    stub.on(Session::uploadPath, StubReply{.status = 500});
    ASSERT_NO_FATAL_FAILURE(takeIn(shortFilm()));
    ASSERT_TRUE(waitForFilm());
    const RecordedRequest upload = session.uploads().value(0);
    const QByteArray boundary = upload.header("Content-Type").mid(30);
    EXPECT_EQ(upload.body, "--" + boundary + "\r\n\r\n--" + boundary + "--\r\n");

    // The next upload ends without any status: the one before still counts.
    stub.on(Session::uploadPath, StubReply{.isReset = true});
    ASSERT_NO_FATAL_FAILURE(takeIn(silentFilm()));
    EXPECT_TRUE(waitForFilm());
    EXPECT_NE(session.uploads().last().header("Content-Type").mid(30), boundary) << "drawn anew";
    const QStringList lines =
        program.logged(QStringList{QStringLiteral("Met an error"), QStringLiteral("Failed to upload")});
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines[0], QStringLiteral("Failed to upload downloaded subtitles"));
    EXPECT_TRUE(lines[1].startsWith(QStringLiteral("Met an error uploading subtitles: ")));
    EXPECT_EQ(lines[2], QStringLiteral("Failed to upload downloaded subtitles"));
}

TEST_F(Road, EndsInOneAlertAndTheHomeScreenWhenTheLookupFails) {
    struct Row {
        StubReply reply;
        QByteArray film;
    };
    // Whether the file is a film does not matter here: the hash is seen by the way.
    const QList<Row> rows = {{{.status = 404, .body = "{\"videoId\":1}"}, noise(65535)},
                             {{.status = 500}, noise(65536)},
                             {{.status = 204}, noise(100000)},
                             {{.isReset = true}, QByteArray(200000, '\0')},
                             {{.body = "{\"videoId\"", .declaredLength = 5000}, {}}};
    for (qsizetype i = 0; i < rows.size(); ++i) {
        stub.on(Session::lookupPath, rows[i].reply);
        ASSERT_NO_FATAL_FAILURE(takeIn(fileWith(QStringLiteral("film %1").arg(i), rows[i].film)));
        ASSERT_NO_FATAL_FAILURE(session.expectWarning(lookupMessage, lookupAdvice)) << i;
        EXPECT_THAT(session.lookups().last().body.toStdString(),
                    testing::StartsWith(sizeAndHash(rows[i].film)));
    }
    EXPECT_TRUE(session.playerPages().isEmpty());
    EXPECT_TRUE(stub.requestsTo("Player/Home").isEmpty()) << "home again without a load";
    EXPECT_EQ(program.logLines().size(), rows.size()) << "no word but \"Analyzing video...\"";

    session.answerAsUsual();
    ASSERT_NO_FATAL_FAILURE(takeIn(shortFilm()));
    EXPECT_TRUE(waitForFilm()) << "the next one";
}

TEST_F(Road, PlaysWithAReplyThatIsNoUsableJsonOrHasNothingToFetch) {
    const QByteArray had = R"({"videoId":"42","subsToDownload":[{"downloadUrl":"http://127.0.0.1:1/a",)"
                           R"("mustBeDownloaded":false,"subtitleId":1}]})";
    const QList<std::pair<QByteArray, QByteArray>> rows = {
        {"no json", "0"},
        {"[]", "0"},
        {R"({"videoId":null,"subsToDownload":[1,{"downloadUrl":7}]})", "0"},
        {R"({"videoId":5})", "5"},
        {had, "42"}};
    for (const auto &[body, videoId] : rows) {
        stub.forgetRequests();
        program.forgetLog();
        stub.on(Session::lookupPath, json(body));
        ASSERT_NO_FATAL_FAILURE(takeIn(shortFilm())); // over the film before
        EXPECT_TRUE(waitForFilm()) << body.toStdString();
        EXPECT_EQ(session.playerPages().value(0).target, "/Player/Play?videoId=" + videoId);
        EXPECT_EQ(program.logged("Done analyzing video: found 0 subtitles to download").size(), 1);
        EXPECT_TRUE(session.uploads().isEmpty());
    }
}

TEST_F(Road, SaysSoOnceWhenAFilmCannotBePlayed) {
    const QByteArray sentence = "This is a line of a text that is no film.\n";
    for (const QString &path :
         {fileWith(QStringLiteral("no film.mkv"), "short"), folder.filePath(QStringLiteral("missing.mkv")),
          folder.path(), fileWith(QStringLiteral("long.txt"), sentence.repeated(5000)),
          fileWith(QStringLiteral("lines.srt"),
                   QByteArray("1\n00:00:01,000 --> 00:00:09,000\nLine\n\n").repeated(500)),
          fileWith(QStringLiteral("noise.bin"), noise(200'000))}) {
        stub.forgetRequests();
        ASSERT_NO_FATAL_FAILURE(takeIn(path));
        ASSERT_NO_FATAL_FAILURE(session.expectWarning(filmMessage, filmAdvice)) << path.toStdString();
        EXPECT_EQ(session.lookups().size(), 1) << "the service is asked first";
        letPass(200ms);
        EXPECT_FALSE(program.dialog().exists()) << path.toStdString();
    }
}

TEST_F(Road, HashesARemoteFilmByItsHeadAndTwoRanges) {
    const QByteArray film = read(shortFilm());
    stub.on("films/v.mkv", StubService::bytesWithRanges(film));
    stub.on("moved.mkv", {.status = 302, .extraHeaders = {"Location: /films/v.mkv"}});
    ASSERT_NO_FATAL_FAILURE(session.openUrl(stub.baseUrl() + QStringLiteral("moved.mkv")));
    ASSERT_TRUE(waitForFilm());
    const qsizetype size = film.size();
    EXPECT_THAT(hashRequests("films/v.mkv"),
                testing::ElementsAre(QStringLiteral("HEAD"), QStringLiteral("GET bytes=0-65535"),
                                     QStringLiteral("GET bytes=%1-%2").arg(size - 65536).arg(size)));
    EXPECT_THAT(lookup(0), testing::StartsWith(sizeAndHash(film) + "(null)&"));

    program.setPreference(QStringLiteral("file-name"), QStringLiteral("Known.mkv"));
    ASSERT_NO_FATAL_FAILURE(session.openUrl(stub.baseUrl() + QStringLiteral("films/v.mkv")));
    ASSERT_TRUE(waitForLookups(2));
    EXPECT_THAT(lookup(1), testing::StartsWith(sizeAndHash(film) + "Known.mkv&"));
    EXPECT_TRUE(waitForFilm());
}

TEST_F(Road, HashesRemoteFilmsOfServersThatDoNotKeepTheRules) {
    stub.on(Session::lookupPath, StubReply{.status = 404});
    struct Row {
        StubService::Handler server;
        QStringList requests;
        std::string form;
    };
    const QByteArray film = noise(65536 + 9);
    const auto first = QStringLiteral("GET bytes=0-65535");
    const auto always = [](const StubReply &reply) {
        return [reply](const RecordedRequest &) { return reply; };
    };
    const QList<Row> rows = {
        {always({.body = QByteArray(65535, 'x')}), {QStringLiteral("HEAD")}, sizeAndHash({})},
        {always({.isReset = true}), {QStringLiteral("HEAD")}, sizeAndHash({})},
        // Ranges ignored: the whole film twice, of which the first block counts twice.
        {always({.body = film}),
         {QStringLiteral("HEAD"), first, QStringLiteral("GET bytes=9-65545")},
         "fileSize=65545&movieHash=" +
             QByteArray::number(QByteArray::fromStdString(sizeAndHash(film.left(65536)))
                                        .split('=')[2]
                                        .split('&')[0]
                                        .toULongLong(nullptr, 16) +
                                    9,
                                16)
                 .toStdString() +
             "&"},
        // No length counts as the largest: with blocks that are too short for it, and with whole ones.
        {always({.body = "x", .declaredLength = -2}),
         {QStringLiteral("HEAD"), first,
          QStringLiteral("GET bytes=18446744073709486079-18446744073709551615")},
         sizeAndHash({})},
        {always({.body = QByteArray(65536, '\0'), .declaredLength = -2}),
         {QStringLiteral("HEAD"), first,
          QStringLiteral("GET bytes=18446744073709486079-18446744073709551615")},
         "fileSize=18446744073709551615&movieHash=ffffffffffffffff&"}};
    for (qsizetype i = 0; i < rows.size(); ++i) {
        stub.forgetRequests();
        stub.on("v.mkv", rows[i].server);
        ASSERT_NO_FATAL_FAILURE(session.openUrl(stub.baseUrl() + QStringLiteral("v.mkv")));
        ASSERT_NO_FATAL_FAILURE(session.expectWarning(lookupMessage, lookupAdvice)) << i;
        EXPECT_EQ(hashRequests("v.mkv"), rows[i].requests) << i;
        EXPECT_THAT(lookup(0), testing::StartsWith(rows[i].form)) << i;
    }
}

TEST_F(Road, WaitsForAFilmThatIsSlowToComeAndEndsItInPeace) {
    const StubService::Handler bytes = StubService::bytesWithRanges(read(shortFilm()));
    const auto isSlow = std::make_shared<bool>(true); // the stub outlives the test
    stub.on("slow.mkv", [=](const RecordedRequest &request) {
        StubReply reply = bytes(request);
        reply.isHeld = *isSlow && request.header("User-Agent").startsWith("Murvo"); // the media library
        return reply;
    });
    ASSERT_NO_FATAL_FAILURE(session.openUrl(stub.baseUrl() + QStringLiteral("slow.mkv")));
    ASSERT_TRUE(waitUntil([this] { return session.isFilmShown(); }));
    letPass(2s);
    EXPECT_FALSE(program.dialog().exists());
    *isSlow = false;
    EXPECT_GE(stub.releaseHeld(), 1);
    ASSERT_TRUE(waitForFilm());
    player.send("app:///Execute/SeekTo?position=4");
    EXPECT_TRUE(waitUntil([this] { return player.timeMs() > 4500; }));
    letPass(1s);
    EXPECT_FALSE(program.dialog().exists());
    EXPECT_TRUE(session.isFilmShown());
}

TEST_F(Road, SaysSoWhenAServerDoesNotGiveTheFilmInParts) {
    stub.on("late.mp4", StubReply{.contentType = "video/mp4", .body = read(filmWithLateIndex())});
    ASSERT_NO_FATAL_FAILURE(session.openUrl(stub.baseUrl() + QStringLiteral("late.mp4")));
    ASSERT_NO_FATAL_FAILURE(session.expectWarning(filmMessage, filmAdvice));
}

TEST_F(Road, AnEarlierFilmsRepliesChangeNothing) {
    // One film waits for its lookup, one for a download, one for its upload, one for its remote hash.
    const auto take = [this](const QString &address) {
        ASSERT_NO_FATAL_FAILURE(session.openUrl(stub.baseUrl() + address));
    };
    const QByteArray film = read(shortFilm());
    for (const char *name : {"1.mkv", "2.mkv", "3.mkv", "5.mkv"})
        stub.on(name, StubService::bytesWithRanges(film));
    const QByteArray offer = "{\"videoId\":1,\"subsToDownload\":[" + entry("slow", 1, "slow.srt") + "]}";
    const StubReply held{.body = "late", .isHeld = true};
    stub.on(Session::lookupPath, StubReply{.body = offer, .isHeld = true});
    take(QStringLiteral("1.mkv"));
    ASSERT_TRUE(waitForLookups(1));
    stub.on(Session::lookupPath, json(offer));
    stub.on("slow", held);
    take(QStringLiteral("2.mkv"));
    ASSERT_TRUE(waitUntil([this] { return stub.requestsTo("slow").size() == 1; }));
    stub.on("slow", StubReply{.body = "in time"});
    stub.on(Session::uploadPath, held);
    take(QStringLiteral("3.mkv"));
    ASSERT_TRUE(waitUntil([this] { return session.uploads().size() == 1; }));
    stub.on("4.mkv", StubReply{.body = QByteArray(70000, 'x'), .isHeld = true});
    take(QStringLiteral("4.mkv"));
    ASSERT_TRUE(waitUntil([this] { return stub.requestsTo("4.mkv").size() == 1; }));

    stub.on(Session::lookupPath, json("{\"videoId\":2}"));
    take(QStringLiteral("5.mkv"));
    stub.releaseHeld();
    ASSERT_TRUE(waitForFilm());
    stub.releaseHeld();
    session.settle(); // a round trip later everything that was still on its way has arrived
    ASSERT_EQ(session.playerPages().size(), 1);
    EXPECT_EQ(session.playerPages().first().target, "/Player/Play?videoId=2");
    EXPECT_EQ(session.uploads().size(), 1);
    EXPECT_EQ(session.lookups().size(), 4) << "the film that was not hashed is not looked up any more";
    EXPECT_FALSE(program.dialog().exists());
}

} // namespace murvo::test
