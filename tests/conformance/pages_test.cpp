// SPDX-License-Identifier: GPL-3.0-or-later
// Pages that do not come, that are not the service's, or whose process dies.

#include "conformance/Screen.h"
#include "conformance/Session.h"
#include "support/TestFilms.h"
#include "support/Wait.h"
#include "support/XTools.h"

#include <QFile>

#include <gtest/gtest.h>

#include <csignal>

namespace murvo::test {

using namespace std::chrono_literals;

class Pages : public Starting {
  protected:
    [[nodiscard]] bool isDrawn(const QColor &color) const {
        return waitUntil([&] { return screenColor(session.content().topLeft() + QPoint(30, 30)) == color; },
                         20s);
    }
    [[nodiscard]] static QByteArray coloured(const char *color, const QByteArray &body = {}) {
        return QByteArray("<!doctype html><title>page</title><body style='background:") + color + "'>" + body;
    }
    static inline const QByteArray ready =
        "<script>location.href = 'app:///Execute/EnableDraggableHomeScreen'</script>";
    static inline const QString connecting = QStringLiteral("Connecting...");
};

TEST_F(Pages, AHomePageThatDoesNotComeIsTriedUntilItDoes) {
    int tries = 0;
    stub.on("Player/Home", [&](const RecordedRequest &) {
        ++tries;
        if (tries == 1)
            return StubReply{.isReset = true};
        if (tries == 2)
            return StubReply{.status = 204};
        if (tries == 3)
            return StubReply{.status = 503, .body = "<h1>Out of order</h1>"};
        return StubReply{.body = home.document(Session::homeBody)};
    });
    session.start();
    ASSERT_TRUE(waitUntil([&] { return tries == 3; }, 20s));
    EXPECT_TRUE(session.showsLoader(connecting));
    EXPECT_TRUE(waitUntil([this] { return session.isHomeShown(); })) << tries;
    EXPECT_EQ(tries, 4);
    session.end();
}

TEST_F(Pages, OnlyThoseOfTheServiceAreObeyed) {
    StubService elsewhere;
    elsewhere.on("foreign", StubReply{.body = coloured("#0b5ed7", ready)});
    const auto refusals = [this] {
        return program.logged("Refused a page that is not the service's: app:///Execute/Enable").size();
    };
    const auto isReady = [this] {
        return Screen::drop({QUrl::fromLocalFile(shortFilm())}, session.content().center());
    };
    // The service's own page leads on to another server, even before it is loaded itself.
    const QByteArray address = elsewhere.baseUrl().toLatin1() + "foreign";
    stub.on("Player/Home", StubReply{.body = "<script>location.href = '" + address + "'</script>"});
    session.start();
    EXPECT_TRUE(isDrawn(QColor(0x0b, 0x5e, 0xd7))) << "it shows all the same";
    EXPECT_TRUE(waitUntil([&] { return refusals() == 1; })) << program.log().toStdString();
    EXPECT_FALSE(isReady());
    session.end();

    // The service's server sends the view elsewhere itself.
    stub.on("Player/Home", StubReply{.status = 302, .extraHeaders = {"Location: " + address}});
    session.start();
    EXPECT_TRUE(isDrawn(QColor(0x0b, 0x5e, 0xd7)));
    EXPECT_TRUE(waitUntil(isReady));
    EXPECT_EQ(refusals(), 0);
    EXPECT_TRUE(waitUntil([this] { return session.isFilmShown(); }));
    session.end();
}

TEST_F(Pages, ThatTheHomePageLeadsToAreOnTheScreenAfterTheLoader) {
    stub.on("held", {.body = coloured("#0b5ed7", "<script>onclick = () => location.href = '/quick'</script>"),
                     .isHeld = true});
    stub.on("quick", {.body = coloured("#8a2be2")});
    ASSERT_NO_FATAL_FAILURE(session.startAtHome());
    std::ignore = home.evaluate(QStringLiteral("setTimeout(() => location.href = '/held')"));
    EXPECT_TRUE(waitUntil([this] { return session.showsLoader(connecting); }));
    EXPECT_FALSE(Screen::drop({QUrl::fromLocalFile(shortFilm())}, session.content().center())) << "not ready";
    ASSERT_TRUE(waitUntil([this] { return stub.releaseHeld() > 0; }));
    ASSERT_TRUE(isDrawn(QColor(0x0b, 0x5e, 0xd7)));
    clickAt(session.content().center());
    EXPECT_TRUE(isDrawn(QColor(0x8a, 0x2b, 0xe2))) << "nothing in it changes once it is there";
    session.end();
}

TEST_F(Pages, TheirProcessesMayDie) {
    ASSERT_NO_FATAL_FAILURE(session.startAtHome());
    ASSERT_NO_FATAL_FAILURE(session.playFilm(filmWithTwoAudioTracks()));
    const auto killPages = [this] {
        const QList<qint64> processes = program.pageProcesses();
        EXPECT_FALSE(processes.isEmpty());
        for (const qint64 process : processes)
            ::kill(static_cast<pid_t>(process), SIGKILL);
    };
    const double timeMs = player.timeMs();
    player.forget();
    killPages();
    ASSERT_TRUE(waitUntil([this] { return session.playerPages().size() == 2 && session.isFilmPlaying(); }));
    EXPECT_GT(player.timeMs(), timeMs) << "the film goes on";
    player.send("app:///Request/Duration?guid=again");
    EXPECT_TRUE(waitUntil([this] { return !player.answers("again").isEmpty(); }));

    EXPECT_TRUE(waitUntil([this] { return stub.requestsTo("Player/Home").size() == 2; }));
    EXPECT_EQ(program.startAgain({shortFilm()}), 0);
    home.send("app:///Execute/EnableDraggableHomeScreen");
    EXPECT_TRUE(waitUntil([this] { return session.playerPages().size() == 3; }))
        << "the home page under the film takes films again";

    session.goHome();
    killPages();
    EXPECT_TRUE(waitUntil([this] { return stub.requestsTo("Player/Home").size() == 3; }));
    EXPECT_TRUE(waitUntil([this] { return session.isHomeShown(); }));
    ASSERT_NO_FATAL_FAILURE(session.playFilm(shortFilm())); // ready again
    session.end();
}

TEST_F(Pages, TheRegistrationLinkGoesToTheUsersBrowser) {
    program.installBrowser();
    ASSERT_NO_FATAL_FAILURE(session.startAtHome());
    for (const char *link : {"app:///Execute/PlayerRegister", "/Any/PlayerRegister?x=1"}) {
        std::ignore = home.evaluate(QStringLiteral("location.href = '%1'; 1").arg(QLatin1String(link)));
        const QString address = stub.baseUrl() + QStringLiteral("Account/Register");
        EXPECT_TRUE(waitUntil([&] { return program.takeOpenedAddress() == address; })) << link;
        EXPECT_TRUE(waitUntil([this] { return session.isHomeShown(); })) << "the page stays";
    }
    EXPECT_TRUE(stub.requestsTo("Any/PlayerRegister").isEmpty());
    EXPECT_FALSE(waitUntil([this] { return stub.requestsTo("Player/Home").size() > 1; }, 1s)) << "a reload";
    session.end();
}

} // namespace murvo::test
