// SPDX-License-Identifier: GPL-3.0-or-later
// What pages command and ask for, sent by a real page and seen in the player, the windows and the sound.

#include "app/Classes/MDragReceiverWebView.h"
#include "app/Media/VLCMediaPlayer.h"
#include "app/Platform/MainWindow.h"
#include "app/ViewControllers/WebViewController.h"
#include "support/DesktopEnvironment.h"
#include "support/LogCapture.h"
#include "support/PlayerFixture.h"
#include "support/SoundRecorder.h"
#include "support/TestFilms.h"
#include "support/Wait.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryFile>
#include <QWebEnginePage>

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>

namespace murvo::test {

using namespace std::chrono_literals;
using testing::ElementsAre;

namespace {

MATCHER_P2(IsBetween, low, high, "") {
    return arg >= low && arg <= high;
}

} // namespace

class PageBridge : public PlayerFixture {
  protected:
    void command(const char *nameAndArguments) {
        playerPageSends(QStringLiteral("app:///Execute/") + QString::fromLatin1(nameAndArguments));
    }
    void request(const char *nameAndArguments) {
        playerPageSends(QStringLiteral("app:///Request/") + QString::fromLatin1(nameAndArguments));
    }
    /// Everything that was sent before has been handled once this returns.
    void settle() {
        request("IsFullscreen?guid=settle");
        EXPECT_TRUE(waitUntil([this] { return !answersTo(QStringLiteral("settle")).isEmpty(); }));
    }
    [[nodiscard]] qint64 time() const { return delegate->player()->time().intValue(); }
    [[nodiscard]] QSize contentSize() const { return delegate->window().contentView()->size(); }
};

TEST_F(PageBridge, PausesPlaysAndSeeks) {
    ASSERT_NO_FATAL_FAILURE(startFilm(filmWithTwoAudioTracks()));
    const VLCMediaPlayer &player = *delegate->player();
    command("Pause");
    ASSERT_TRUE(waitUntil([&] { return player.state() == VLCMediaPlayerStatePaused; }));
    command("Pause");
    settle();
    EXPECT_FALSE(player.isPlaying()) << "a second pause does not start the film again";
    command("SeekTo?position=8x");
    command("Play");
    ASSERT_TRUE(waitUntil([&] { return player.isPlaying() && time() >= 8000; }));
    EXPECT_THAT(time(), IsBetween(8000, 9500));
    command("SeekTo");
    EXPECT_TRUE(waitUntil([&] { return time() < 2000; })) << "no position is the start";
    command("Unknown?x=1");
    command("");
    settle();
    EXPECT_TRUE(player.isPlaying());
}

TEST_F(PageBridge, SetsVolumeMuteSpeedAndAudioTrack) {
    ASSERT_NO_FATAL_FAILURE(startFilm(filmWithTwoAudioTracks()));
    const VLCMediaPlayer &player = *delegate->player();
    SoundRecorder recorder;
    EXPECT_TRUE(waitUntil([&] { return player.volume() == 200; })) << "a film starts at the maximum";
    EXPECT_TRUE(waitUntil([&] { return recorder.amplitudeOf(220) > 0.05; })) << "the first track sounds";

    command("SetAudioTrack?track=2");
    EXPECT_TRUE(
        waitUntil([&] { return recorder.amplitudeOf(880) > 0.05 && recorder.amplitudeOf(220) < 0.02; }));
    EXPECT_EQ(player.currentAudioTrackIndex(), 2);

    command("SetMuted?muted=true");
    EXPECT_TRUE(waitUntil([&] { return recorder.amplitudeOf(880) < 0.002; }));
    command("SetMuted?muted=false");
    EXPECT_TRUE(waitUntil([&] { return recorder.amplitudeOf(880) > 0.05; }));
    EXPECT_EQ(player.volume(), 200) << "muting leaves the volume alone";

    command("SetMuted?muted=Yes");
    command("SetVolume?volume=50&volume=60");
    EXPECT_TRUE(waitUntil([&] { return player.volume() == 60 && recorder.amplitudeOf(880) > 0.005; }))
        << "a volume unmutes";
    command("SetVolume");
    EXPECT_TRUE(waitUntil([&] { return player.volume() == 0; }));

    command("SetPlaybackSpeed?speed=1.5");
    EXPECT_TRUE(waitUntil([&] { return qFuzzyCompare(player.rate(), 1.5F); }));
}

TEST_F(PageBridge, ResizesForTutorialAndPayment) {
    ASSERT_NO_FATAL_FAILURE(startFilm(filmWithTwoAudioTracks()));
    command("ResizeForTutorial");
    EXPECT_TRUE(waitUntil([this] { return contentSize() == QSize(907, 510); }))
        << contentSize().width() << " x " << contentSize().height();
    command("ResizeForTutorial"); // the frame is higher than 510 now
    command("ResizeForPayment");
    EXPECT_TRUE(waitUntil([this] { return contentSize() == QSize(1105, 570); }));
    command("ResizeForTutorial");
    settle();
    EXPECT_EQ(contentSize(), QSize(1105, 570)) << "high enough already";
}

TEST_F(PageBridge, AnswersEachRequestOnceWithItsOwnGuid) {
    ASSERT_NO_FATAL_FAILURE(startFilm(filmWithTwoAudioTracks()));
    request("Duration?guid=d1");
    request("Duration?guid=d2&x");
    request("Volume?guid=v");
    request("PlaybackSpeed?guid=s");
    request("IsFullscreen?guid=f");
    request("FileName?guid=n");
    std::ignore = inPlayerPage(QStringLiteral("window.Low = 'first'; window.High = 'second'; 1"));
    request("AudioInfo?guid=a");
    request("Nothing?guid=x");
    std::ignore = inPlayerPage(QStringLiteral("listen('(null)'); ask('app:///Request/IsFullscreen'); 1"));
    settle();
    ASSERT_TRUE(waitUntil([this] { return !answersTo(QStringLiteral("d2")).isEmpty(); }));
    EXPECT_THAT(answersTo(QStringLiteral("d1")), ElementsAre(answersTo(QStringLiteral("d2")).first()));
    EXPECT_THAT(answersTo(QStringLiteral("d1")).first().toInt(), IsBetween(19900, 20200));
    EXPECT_THAT(answersTo(QStringLiteral("v")), ElementsAre(QStringLiteral("200")));
    EXPECT_THAT(answersTo(QStringLiteral("s")), ElementsAre(QStringLiteral("1")));
    EXPECT_THAT(answersTo(QStringLiteral("f")), ElementsAre(QStringLiteral("false")));
    EXPECT_THAT(answersTo(QStringLiteral("n")), ElementsAre(QStringLiteral("\"two-tracks.mkv\"")));
    EXPECT_THAT(answersTo(QStringLiteral("a")),
                ElementsAre(QStringLiteral(R"({"audioTracks":{"1":"first","2":"second"},"audioTrack":1})")));
    EXPECT_TRUE(answersTo(QStringLiteral("x")).isEmpty());
    EXPECT_THAT(answersTo(QStringLiteral("(null)")), ElementsAre(QStringLiteral("false")))
        << "a missing guid";
}

TEST_F(PageBridge, AnswersRequestsThatCameTooEarlyInOrder) {
    ASSERT_NO_FATAL_FAILURE(startAtHome());
    stub.on("Player/Play",
            StubReply{.body = R"html(<!doctype html><script src="/jquery.js"></script><body><script>
        window.order = [];
        $(window).one('timeUpdate', () => order.push('first report'));
        for (const [name, guid] of [['Duration', 'a'], ['Volume', 'b'], ['Duration', 'c'], ['PlaybackSpeed', 'd'],
                                    ['IsFullscreen', 'asked']]) {
          $(window).on('response:' + guid, (event, value) => order.push(guid + '=' + value));
          const frame = document.createElement('iframe');
          frame.src = 'app:///Request/' + name + '?guid=' + guid;
          document.body.append(frame);
        }</script>)html"});
    // The film comes from a server that, once the hash is known, keeps it back until the page has asked.
    QFile file(filmWithTwoAudioTracks());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const auto serve = StubService::bytesWithRanges(file.readAll());
    stub.on("v.mkv", [this, serve](const RecordedRequest &request) {
        StubReply reply = serve(request);
        reply.isHeld = !stub.requestsTo("Api/MovieFile/GetSubtitlesToDownload").isEmpty();
        return reply;
    });
    delegate->processVideoAndLaunch(stub.baseUrl() + QStringLiteral("v.mkv"));
    ASSERT_TRUE(waitUntil([this] {
        return isFilmShown() &&
               inPlayerPage(QStringLiteral("(window.order || []).join()")) == QLatin1String("asked=false");
    }));
    stub.on("v.mkv", serve);
    stub.releaseHeld();
    ASSERT_TRUE(
        waitUntil([this] { return inPlayerPage(QStringLiteral("order.length")) == QLatin1String("6"); }));
    const QStringList order = inPlayerPage(QStringLiteral("order.slice(1).join()")).split(u',');
    EXPECT_EQ(order.first(), QStringLiteral("first report"));
    EXPECT_THAT(order, testing::Contains(QStringLiteral("b=200")));
    EXPECT_THAT(order, testing::Contains(QStringLiteral("d=1")));
    const QStringList durations = order.filter(QRegularExpression(QStringLiteral("^[ac]=20\\d\\d\\d$")));
    ASSERT_EQ(durations.size(), 2);
    EXPECT_TRUE(durations[0].startsWith(u'a')) << "in the order in which they were asked";
}

TEST_F(PageBridge, ObeysPagesOfTheServiceOnly) {
    const LogCapture log;
    const auto refusals = [&log] {
        return log.linesBeginningWith({QStringLiteral("Refused a page that is not the service's")}).size();
    };
    StubService elsewhere;
    const QByteArray ready = "<script>location.href = 'app:///Execute/EnableDraggableHomeScreen'</script>";
    elsewhere.on("foreign", StubReply{.body = "<title>foreign</title>" + ready});

    // The service's own page leads on to another server, even before it is loaded itself.
    stub.on("Player/Home", StubReply{.body = "<script>location.href = '" + elsewhere.baseUrl().toLatin1() +
                                             "foreign'</script>"});
    delegate->applicationDidFinishLaunching();
    ASSERT_TRUE(waitUntil([&] { return refusals() == 1; }));
    EXPECT_FALSE(delegate->session().homeScreenLoaded);
    EXPECT_EQ(inHomePage(QStringLiteral("document.title")), QStringLiteral("foreign"))
        << "it shows all the same";

    // The service's server sends the view elsewhere itself.
    stub.on("Player/Home",
            StubReply{.status = 302,
                      .extraHeaders = {"Location: " + elsewhere.baseUrl().toLatin1() + "foreign"}});
    delegate->loadHomeScreen();
    EXPECT_TRUE(waitUntil([this] { return delegate->session().homeScreenLoaded && isHomeShown(); }));
    EXPECT_EQ(refusals(), 1);
    const qsizetype loads = elsewhere.requestsTo("foreign").size();
    letPass(800ms); // longer than the pause before a page that failed is loaded again
    EXPECT_EQ(elsewhere.requestsTo("foreign").size(), loads);
}

TEST_F(PageBridge, OutlivesTheProcessesOfItsPages) {
    ASSERT_NO_FATAL_FAILURE(startFilm(filmWithTwoAudioTracks()));
    const auto kill = [](const WebViewController &controller) {
        const qint64 process = controller.view()->page()->renderProcessPid();
        ASSERT_GT(process, 1);
        ::kill(static_cast<pid_t>(process), SIGKILL);
    };
    stub.forgetRequests();
    kill(*delegate->playerWebViewController()); // the home page's as well, where they share one
    ASSERT_TRUE(waitUntil([this] { return !stub.requestsTo("Player/Play").isEmpty(); }));
    EXPECT_TRUE(delegate->player()->isPlaying()) << "the film goes on";
    ASSERT_TRUE(waitUntil(
        [this] { return inPlayerPage(QStringLiteral("typeof ask")) == QLatin1String("function"); }));
    playerPageSends(QStringLiteral("app:///Request/Duration?guid=again"));
    EXPECT_TRUE(waitUntil([this] { return !answersTo(QStringLiteral("again")).isEmpty(); }));
    EXPECT_TRUE(waitUntil(
        [this] { return inPlayerPage(QStringLiteral("times.length > 1")) == QLatin1String("true"); }));

    delegate->loadHomeScreen();
    ASSERT_TRUE(waitUntil([this] { return delegate->session().homeScreenLoaded && isHomeShown(); }));
    stub.forgetRequests();
    kill(*delegate->homeWebViewController());
    ASSERT_TRUE(waitUntil([this] { return !stub.requestsTo("Player/Home").isEmpty(); }));
    EXPECT_TRUE(waitUntil([this] { return delegate->session().homeScreenLoaded && isHomeShown(); }));
}

TEST_F(PageBridge, FeedsThePositionAsItPlays) {
    ASSERT_NO_FATAL_FAILURE(startFilm(filmWithTwoAudioTracks()));
    ASSERT_TRUE(waitUntil(
        [this] { return inPlayerPage(QStringLiteral("times.length > 6")) == QLatin1String("true"); }));
    const QStringList times = inPlayerPage(QStringLiteral("times.join(' ')")).split(u' ');
    for (qsizetype i = 1; i < times.size(); ++i)
        EXPECT_THAT(times[i].toInt() - times[i - 1].toInt(), IsBetween(0, 2000))
            << times.join(u' ').toStdString();
}

TEST_F(PageBridge, SpeaksAWordAndReplacesTheOneThatSounds) {
    ASSERT_NO_FATAL_FAILURE(startAtHome());
    const LogCapture log;
    SoundRecorder recorder;
    stub.on("low.wav", {.contentType = "audio/wav", .body = toneFile(500, 8)});
    stub.on("high.wav", {.contentType = "audio/wav", .body = toneFile(1500, 3)});
    stub.on("text.wav", {.contentType = "audio/wav", .body = "this is no sound at all"});
    const auto play = [this](const QString &url) {
        homePageSends(QStringLiteral("app:///Execute/PlayAudio?audioUrl=") +
                      QString::fromLatin1(QUrl::toPercentEncoding(url)));
    };
    play(stub.baseUrl() + QStringLiteral("low.wav"));
    EXPECT_TRUE(waitUntil([&] { return recorder.amplitudeOf(500) > 0.05; }));
    play(stub.baseUrl() + QStringLiteral("high.wav"));
    EXPECT_TRUE(
        waitUntil([&] { return recorder.amplitudeOf(1500) > 0.05 && recorder.amplitudeOf(500) < 0.01; }));

    // A local file is no address, however much of a sound it is.
    QTemporaryFile local;
    ASSERT_TRUE(local.open());
    local.write(toneFile(2500, 8));
    local.flush();
    const auto failures = [&] {
        return log
            .linesBeginningWith(
                {QStringLiteral("Error initializing data for AVAudioPlayer.  Possibly Malformed URL")})
            .size();
    };
    qsizetype expected = 0;
    for (const QString &bad :
         {stub.baseUrl() + QStringLiteral("missing.wav"), QUrl::fromLocalFile(local.fileName()).toString(),
          QStringLiteral("no address")}) {
        play(bad);
        EXPECT_TRUE(waitUntil([&] { return failures() == expected + 1; })) << bad.toStdString();
        ++expected;
    }
    EXPECT_LT(recorder.amplitudeOf(2500), 0.01);
    play(stub.baseUrl() + QStringLiteral("text.wav"));
    EXPECT_TRUE(
        waitUntil([&] { return !log.linesBeginningWith({QStringLiteral("Speak Error: ")}).isEmpty(); }));
    EXPECT_EQ(log.linesBeginningWith({QStringLiteral("Speak for: ")}).value(0),
              QStringLiteral("Speak for: ") + stub.baseUrl() + QStringLiteral("low.wav"));
}

TEST_F(PageBridge, StopLeadsHomeAndRefreshesTheLevel) {
    ASSERT_NO_FATAL_FAILURE(startFilm(filmWithTwoAudioTracks()));
    command("Stop");
    ASSERT_TRUE(waitUntil([this] { return isHomeShown(); }));
    EXPECT_EQ(delegate->player()->state(), VLCMediaPlayerStateStopped);
    EXPECT_TRUE(waitUntil(
        [this] { return inHomePage(QStringLiteral("events.join(' ')")) == QLatin1String("refreshLevel"); }));
    EXPECT_EQ(stub.requestsTo("Player/Home").size(), 1) << "the page is not loaded again";
    EXPECT_TRUE(waitUntil([this] { return contentSize() == QSize(600, 400); }));
}

TEST_F(PageBridge, CancelsPageRequestsWithoutLeavingThePage) {
    ASSERT_NO_FATAL_FAILURE(startAtHome());
    std::ignore = inHomePage(QStringLiteral("window.still = 'here'; 1"));
    homePageSends(QStringLiteral("app:"));
    homePageSends(QStringLiteral("app:///"));
    homePageSends(QStringLiteral("app:///Other/Thing?x"));
    homePageSends(QStringLiteral("app:///Execute/Pause")); // no player yet
    homePageSends(QStringLiteral("app:///Request/Duration?guid=1"));
    letPass(200ms);
    EXPECT_EQ(inHomePage(QStringLiteral("window.still")), QStringLiteral("here"));
    EXPECT_TRUE(delegate->session().homeScreenLoaded) << "a cancelled navigation is no load";

    // Another page of the service is let through, and the home screen begins anew.
    homePageSends(stub.baseUrl() + QStringLiteral("Player/Home"));
    EXPECT_TRUE(waitUntil([this] { return stub.requestsTo("Player/Home").size() == 2; }));
    EXPECT_TRUE(waitUntil([this] { return delegate->session().homeScreenLoaded; }));
}

/// The real pages from a service whose replies can fail.
class PageLoading : public PlayerFixture {
  protected:
    /// Answers with the page's own file, from the request after so many failures on.
    void serve(const QByteArray &path, const QString &file, const QByteArray &type, int failures = 0) {
        QFile resource(QStringLiteral(":/murvo/web/") + file);
        ASSERT_TRUE(resource.open(QIODevice::ReadOnly)) << file.toStdString();
        stub.on(path, [=, this, bytes = resource.readAll()](const RecordedRequest &) {
            const bool isFailing = stub.requestsTo(path).size() <= failures;
            return StubReply{.status = isFailing ? 503 : 200, .contentType = type, .body = bytes};
        });
    }

    void serveAll() {
        QDirIterator files(QStringLiteral(":/murvo/web"), QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString file = files.next().section(u'/', 3);
            const QByteArray type = file.endsWith(QLatin1String("js"))    ? "text/javascript"
                                    : file.endsWith(QLatin1String("css")) ? "text/css"
                                                                          : "image/svg+xml";
            ASSERT_NO_FATAL_FAILURE(serve("Web/" + file.toUtf8(), file, type));
        }
        serve("Player/Play", QStringLiteral("play/play.html"), "text/html");
        serve("Player/Home", QStringLiteral("home/home.html"), "text/html");
    }
};

TEST_F(PageLoading, IsTriedOnceMoreWhenAScriptOrStyleDoesNotArrive) {
    struct Case {
        QByteArray page;
        QString lacking;
        QByteArray type;
        int failures;
    };
    for (const Case &each : {Case{"Player/Play", QStringLiteral("play/play.mjs"), "text/javascript", 1},
                             Case{"Player/Play", QStringLiteral("play/clock.mjs"), "text/javascript", 1},
                             Case{"Player/Play", QStringLiteral("lib/jquery.min.js"), "text/javascript", 1},
                             Case{"Player/Home", QStringLiteral("home/home.css"), "text/css", 1},
                             Case{"Player/Home", QStringLiteral("home/home.mjs"), "text/javascript", 99}}) {
        SCOPED_TRACE(each.lacking.toStdString());
        ASSERT_NO_FATAL_FAILURE(serveAll());
        ASSERT_NO_FATAL_FAILURE(
            serve("Web/" + each.lacking.toUtf8(), each.lacking, each.type, each.failures));
        stub.forgetRequests();
        WebViewController web(DesktopEnvironment::profile());
        web.loadUrl(stub.baseUrl() + QString::fromUtf8(each.page));
        ASSERT_TRUE(waitUntil([&] { return stub.requestsTo("Web/" + each.lacking.toUtf8()).size() == 2; }));
        const auto isAlive = [this] { // its module asks the service for what it shows
            const auto &all = stub.requests();
            return std::any_of(all.cbegin(), all.cend(),
                               [](const auto &one) { return one.target.startsWith("/Api/"); });
        };
        if (each.failures == 1)
            EXPECT_TRUE(waitUntil(isAlive));
        else
            letPass(500ms); // for a third try, which must not come
        EXPECT_EQ(stub.requestsTo(each.page).size(), 2);
    }
}

} // namespace murvo::test
