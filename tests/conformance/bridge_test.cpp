// SPDX-License-Identifier: GPL-3.0-or-later
// What pages command, ask for and hear, seen in the pages, the windows and the sound.

#include "conformance/Screen.h"
#include "conformance/Session.h"
#include "support/SoundRecorder.h"
#include "support/TestFilms.h"
#include "support/Wait.h"

#include <QFile>
#include <QJsonObject>
#include <QUrl>

#include <gmock/gmock.h>

#include <algorithm>

namespace murvo::test {

using namespace std::chrono_literals;

namespace {

MATCHER_P2(IsBetween, low, high, "") {
    return arg >= low && arg <= high;
}

} // namespace

class Bridge : public Running {
  protected:
    void command(const QByteArray &nameAndArguments) { player.send("app:///Execute/" + nameAndArguments); }
    /// No report of the film's time comes any more.
    [[nodiscard]] bool isStill() {
        player.forget();
        letPass(600ms);
        return player.timeMs() < 0;
    }
};

TEST_F(Bridge, PausesPlaysAndSeeks) {
    ASSERT_NO_FATAL_FAILURE(session.playFilm(filmWithTwoAudioTracks()));
    command("Pause");
    session.settle();
    EXPECT_TRUE(isStill());
    command("Pause");
    session.settle();
    EXPECT_TRUE(isStill()) << "a second pause does not start the film again";
    player.send({"app:///Execute/SeekTo?position=8x", "app:///Execute/Play"});
    ASSERT_TRUE(waitUntil([this] { return player.timeMs() >= 8000; }));
    EXPECT_THAT(player.timeMs(), IsBetween(8000, 9500));
    command("SeekTo?position=1=2");
    EXPECT_TRUE(waitUntil([this] { return player.timeMs() < 2000; })) << "no position is the start";
    player.send(
        {"app:///Execute/Unknown?x=1", "app:///Execute", "app:///execute/Pause", "app:///Other/Pause"});
    session.settle();
    EXPECT_FALSE(isStill());
}

TEST_F(Bridge, SetsVolumeMuteAndAudioTrack) {
    ASSERT_NO_FATAL_FAILURE(session.playFilm(filmWithTwoAudioTracks()));
    SoundRecorder recorder;
    const auto sounds = [&](double low, double high) {
        return waitUntil(
            [&] { return recorder.amplitudeOf(880) >= low && recorder.amplitudeOf(880) <= high; });
    };
    EXPECT_TRUE(waitUntil([&] { return recorder.amplitudeOf(220) > 0.05; })) << "the first track";
    command("SetAudioTrack?track=2");
    EXPECT_TRUE(
        waitUntil([&] { return recorder.amplitudeOf(880) > 0.05 && recorder.amplitudeOf(220) < 0.02; }));
    letPass(500ms); // the recorder looks at half a second
    const double loudest = recorder.amplitudeOf(880);

    command("SetMuted?muted=true");
    EXPECT_TRUE(sounds(0, 0.002));
    command("SetMuted?muted=0");
    EXPECT_TRUE(sounds(0.95 * loudest, 1.05 * loudest)) << "muting leaves the volume alone";
    command("SetMuted?muted=Yes");
    EXPECT_TRUE(sounds(0, 0.002));
    command("SetVolume?volume=50&volume=100x");
    EXPECT_TRUE(sounds(0.05 * loudest, 0.6 * loudest)) << "a volume unmutes";
    command("SetVolume?volume=200");
    EXPECT_TRUE(sounds(0.95 * loudest, 1.05 * loudest)) << "a film starts at the maximum";
    command("SetVolume");
    EXPECT_TRUE(sounds(0, 0.002)) << "none is 0";
}

TEST_F(Bridge, SetsTheSpeedAndFeedsThePositionAsItPlays) {
    ASSERT_NO_FATAL_FAILURE(session.playFilm(filmWithTwoAudioTracks()));
    const auto measuredSpeed = [this] {
        player.forget();
        const auto reports = [this] { return player.events(QStringLiteral("timeUpdate")); };
        EXPECT_TRUE(waitUntil([&] { return reports().size() > 5; }));
        const QList<PageEvent> all = reports();
        for (qsizetype i = 1; i < all.size(); ++i)
            EXPECT_THAT(all[i].values[0].toInt() - all[i - 1].values[0].toInt(), IsBetween(0, 2000));
        return (all.last().values[0].toDouble() - all.first().values[0].toDouble()) /
               (all.last().atMs - all.first().atMs);
    };
    EXPECT_THAT(measuredSpeed(), IsBetween(0.85, 1.15));
    command("SetPlaybackSpeed?speed=1.5x");
    session.settle();
    std::ignore = measuredSpeed(); // what was buffered at the old one
    EXPECT_THAT(measuredSpeed(), IsBetween(1.3, 1.7));
}

TEST_F(Bridge, AnswersEachRequestOnceWithItsOwnGuid) {
    const QTemporaryDir folder;
    const QString film = folder.filePath(QStringLiteral("L'\"été\" \\x.mkv"));
    ASSERT_TRUE(QFile::link(filmWithTwoAudioTracks(), film));
    ASSERT_NO_FATAL_FAILURE(session.playFilm(film));
    std::ignore = player.evaluate(QStringLiteral("window.Low = 'first'; window.High = 'second';"));
    player.send({"app:///Request/Duration?guid=d1", "app:///Request/Duration?guid=d2&x",
                 "app:///Request/Volume?guid=v", "app:///Request/PlaybackSpeed?guid=s",
                 "app:///Request/IsFullscreen?guid=f", "app:///Request/FileName?guid=n",
                 "app:///Request/AudioInfo?guid=a", "app:///Request/Nothing?guid=x",
                 "app:///Request/IsFullscreen"});
    session.settle();
    EXPECT_EQ(player.answers("d1"), player.answers("d2"));
    EXPECT_THAT(player.answers("d1").at(0).toInt(), IsBetween(19900, 20200));
    EXPECT_EQ(player.answers("v"), QJsonArray{200});
    EXPECT_EQ(player.answers("s"), QJsonArray{1});
    EXPECT_EQ(player.answers("f"), QJsonArray{false});
    EXPECT_EQ(player.answers("n"), QJsonArray{QStringLiteral("L'\"été\" \\x.mkv")});
    const QJsonObject tracks{{QStringLiteral("1"), QStringLiteral("first")},
                             {QStringLiteral("2"), QStringLiteral("second")}};
    EXPECT_EQ(player.answers("a"), (QJsonArray{QJsonObject{{QStringLiteral("audioTracks"), tracks},
                                                           {QStringLiteral("audioTrack"), 1}}}));
    EXPECT_EQ(player.answers("x"), QJsonArray());
    EXPECT_EQ(player.answers("(null)"), QJsonArray{false}) << "a missing guid";
}

TEST_F(Bridge, AnswersRequestsThatCameTooEarlyInOrder) {
    stub.on("Player/Play", StubReply{.body = player.document(R"html(<script>
        for (const [name, guid] of [['Duration', 'a'], ['Volume', 'b'], ['Duration', 'c'],
                                    ['PlaybackSpeed', 'd'], ['IsFullscreen', 'now']])
          ask('app:///Request/' + name + '?guid=' + guid);</script>)html")});
    // The film comes from a server that, once the hash is known, keeps it back until the page has asked.
    QFile file(filmWithTwoAudioTracks());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const auto serve = StubService::bytesWithRanges(file.readAll());
    stub.on("v.mkv", [this, serve](const RecordedRequest &request) {
        StubReply reply = serve(request);
        reply.isHeld = !session.lookups().isEmpty();
        return reply;
    });
    ASSERT_NO_FATAL_FAILURE(session.openUrl(stub.baseUrl() + QStringLiteral("v.mkv")));
    ASSERT_TRUE(waitUntil([this] { return !player.answers("now").isEmpty(); }));
    EXPECT_FALSE(player.story().contains(QLatin1String("response:a")));
    stub.on("v.mkv", serve);
    stub.releaseHeld();
    ASSERT_TRUE(waitUntil([this] {
        return !player.answers("b").isEmpty() && !player.answers("c").isEmpty() &&
               !player.answers("d").isEmpty();
    }));
    const QString story = player.story();
    EXPECT_GT(player.events().size(), 0);
    EXPECT_LT(story.indexOf(QLatin1String("response:a")), story.indexOf(QLatin1String("response:c")))
        << "in the order in which they were asked";
    EXPECT_EQ(player.answers("a").size(), 1);
    EXPECT_EQ(player.answers("b"), QJsonArray{200});
    EXPECT_EQ(player.answers("d"), QJsonArray{1});
    const auto first =
        std::find_if(player.events().begin(), player.events().end(), [](const PageEvent &event) {
            return event.name == QLatin1String("timeUpdate") || event.name == QLatin1String("response:a");
        });
    EXPECT_EQ(first->name, QStringLiteral("timeUpdate")) << "the report of the time comes first";
}

TEST_F(Bridge, SpeaksAWordAndReplacesTheOneThatSounds) {
    SoundRecorder recorder;
    stub.on("low.wav", {.contentType = "audio/wav", .body = toneFile(500, 8)});
    stub.on("high.wav", {.contentType = "audio/wav", .body = toneFile(1500, 3)});
    stub.on("text.wav", {.contentType = "audio/wav", .body = "this is no sound at all"});
    const auto play = [this](const QString &url) {
        home.send("app:///Execute/PlayAudio?audioUrl=" + QUrl::toPercentEncoding(url));
    };
    play(stub.baseUrl() + QStringLiteral("low.wav"));
    EXPECT_TRUE(waitUntil([&] { return recorder.amplitudeOf(500) > 0.05; }));
    play(stub.baseUrl() + QStringLiteral("high.wav"));
    EXPECT_TRUE(
        waitUntil([&] { return recorder.amplitudeOf(1500) > 0.05 && recorder.amplitudeOf(500) < 0.01; }));
    EXPECT_EQ(program.logged("Speak for: ").value(0),
              QStringLiteral("Speak for: %1low.wav").arg(stub.baseUrl()));

    QFile local(program.path(QStringLiteral("local.wav"))); // no address, however much of a sound it is
    ASSERT_TRUE(local.open(QIODevice::WriteOnly));
    local.write(toneFile(2500, 8));
    local.close();
    qsizetype expected = 0;
    for (const QString &bad :
         {stub.baseUrl() + QStringLiteral("missing.wav"), QUrl::fromLocalFile(local.fileName()).toString(),
          QStringLiteral("no address")}) {
        ++expected;
        play(bad);
        EXPECT_TRUE(waitUntil([&] {
            return program.logged("Error initializing data for AVAudioPlayer.  Possibly Malformed URL")
                       .size() == expected;
        })) << bad.toStdString();
    }
    EXPECT_LT(recorder.amplitudeOf(2500), 0.01);
    play(stub.baseUrl() + QStringLiteral("text.wav"));
    EXPECT_TRUE(waitUntil([this] { return !program.logged("Speak Error: ").isEmpty(); }));
}

TEST_F(Bridge, StopLeadsHomeAndNothingThatThePageSentIsObeyedAfterIt) {
    SoundRecorder recorder;
    ASSERT_NO_FATAL_FAILURE(session.playFilm(filmWithTwoAudioTracks()));
    ASSERT_TRUE(waitUntil([&] { return recorder.amplitudeOf(220) > 0.05; }));
    player.send({"app:///Execute/Stop", "app:///Execute/Play", "app:///Execute/ResizeForPayment"});
    EXPECT_TRUE(waitUntil([this] { return session.isHomeShown(); }));
    EXPECT_TRUE(waitUntil([this] { return home.story() == QLatin1String("refreshLevel"); }))
        << home.story().toStdString();
    home.send({"app:///Execute/Play", "app:///Execute/SeekTo?position=3"}); // nothing to drive
    EXPECT_TRUE(waitUntil([&] { return recorder.amplitudeOf(220) < 0.002; }));
    letPass(600ms);
    EXPECT_LT(recorder.amplitudeOf(220), 0.002) << "no sound under the home screen";
    EXPECT_TRUE(waitUntil([this] { return session.isHomeShown(); }));
    EXPECT_TRUE(stub.requestsTo("Player/Home").isEmpty()) << "the page is not loaded again";
    EXPECT_EQ(session.content().size(), QSize(600, 400));
}

TEST_F(Bridge, CancelsPageRequestsWithoutLeavingThePage) {
    for (const char *address : {"app:", "app:///", "app:///Other/Thing?x", "app:///Execute/Pause",
                                "app:///Request/Duration?guid=1"})
        std::ignore = home.evaluate(QStringLiteral("location.href = '%1'; 1").arg(QLatin1String(address)));
    EXPECT_EQ(home.evaluate(QStringLiteral("location.pathname")), QJsonValue(QStringLiteral("/Player/Home")));
    EXPECT_TRUE(waitUntil([this] { return session.isHomeShown(); })) << "a cancelled navigation is no load";
    EXPECT_EQ(home.count("opened"), 0);

    // Another page of the service is let through, and the home screen begins anew.
    std::ignore = home.evaluate(QStringLiteral("location.href = '/Player/Home'; 1"));
    EXPECT_TRUE(waitUntil([this] { return home.count("opened") == 1 && session.isHomeShown(); }));
    ASSERT_NO_FATAL_FAILURE(session.playFilm(shortFilm())); // ready again
}

} // namespace murvo::test
