// SPDX-License-Identifier: GPL-3.0-or-later
// What goes wrong between the program and a service, at each step of a film's road. After each fault the
// person opens the next film, which is the next fault's; the last one is a healthy film.

#include "conformance/Session.h"
#include "support/TestFilms.h"
#include "support/Wait.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace murvo::test {

using namespace std::chrono_literals;

namespace {

/// What the person sees of a fault.
enum class Outcome {
    Warning, ///< and the home screen after it
    Film,    ///< with its page
    Loader,  ///< for as long as the fault lasts
};

struct Fault {
    const char *name;
    StubReply reply;
    Outcome atLookup;
    Outcome atOtherSteps = Outcome::Film; ///< download, upload, and the film's page once the fault is over
};

void PrintTo(const Fault &fault, std::ostream *out) {
    *out << fault.name;
}

const QByteArray emptyReply = R"({"videoId":7,"subsToDownload":[]})";

QByteArray hugeReply() {
    QByteArray entries;
    entries.reserve(51 * 1024 * 1024);
    while (entries.size() < 50 * 1024 * 1024)
        entries += R"({"downloadUrl":"http://127.0.0.1:1/x","mustBeDownloaded":false,"subtitleId":1},)";
    return R"({"videoId":7,"subsToDownload":[)" + entries + "{}]}";
}

std::vector<Fault> faults() {
    const QByteArray json = "application/json";
    return {
        {"ResetBeforeAnyByte", {.isReset = true}, Outcome::Warning},
        {"ResetInTheHeaders", {.body = emptyReply, .resetAfter = 30}, Outcome::Warning},
        {"ResetInTheBody",
         {.body = emptyReply + QByteArray(5000, ' '), .resetAfter = 4000},
         Outcome::Warning},
        {"EndsEarly",
         {.contentType = json, .body = emptyReply.left(20), .declaredLength = 4000},
         Outcome::Warning},
        {"NoContent", {.status = 204}, Outcome::Warning},
        {"NotFound", {.status = 404, .body = emptyReply}, Outcome::Warning},
        {"ServerError", {.status = 500, .body = emptyReply}, Outcome::Warning},
        {"HalfAnAnswer", {.contentType = json, .body = emptyReply.left(20)}, Outcome::Film},
        {"FiftyMegabytes", {.contentType = json, .body = hugeReply()}, Outcome::Film},
        {"Silence", {.isHeld = true}, Outcome::Loader, Outcome::Loader},
        {"SlowDrip",
         {.body = emptyReply + QByteArray(5000, ' '), .isDripped = true},
         Outcome::Loader,
         Outcome::Loader},
    };
}

} // namespace

class Faults : public Running {
  protected:
    void openFilm() {
        program.forgetLog();
        stub.forgetRequests();
        ASSERT_EQ(program.startAgain({shortFilm()}), 0);
        home.send("app:///Execute/EnableDraggableHomeScreen");
        ASSERT_TRUE(waitUntil([this] { return !program.logged("Analyzing video...").isEmpty(); }));
        player.forget(); // the film before has ended
    }

    void offerOneSubtitle() {
        stub.on(Session::lookupPath,
                {.contentType = "application/json",
                 .body = R"({"videoId":7,"subsToDownload":[{"downloadUrl":")" + stub.baseUrl().toLatin1() +
                         R"(subtitle","mustBeDownloaded":true,"subFileName":"s.srt","subtitleId":1}]})"});
        stub.on("subtitle", {.body = "1"});
    }

    void expect(Outcome outcome) {
        switch (outcome) {
        case Outcome::Warning:
            session.expectWarning(
                QStringLiteral("Something went wrong."),
                QStringLiteral("We couldn't find subtitles for your video. Please try again later!"));
            break;
        case Outcome::Film:
            // An answer of 50 MB takes its time.
            EXPECT_TRUE(waitUntil([this] { return session.isFilmPlaying(); }, 3 * usualLimit))
                << program.log().toStdString();
            break;
        case Outcome::Loader:
            EXPECT_TRUE(
                waitUntil([this] { return session.showsLoader(QStringLiteral("Searching subtitles...")); }));
            EXPECT_FALSE(waitUntil([this] { return session.isFilmShown(); }, 300ms));
        }
    }

    void expectAHealthyFilm() {
        session.answerAsUsual();
        openFilm();
        expect(Outcome::Film);
    }
};

class FaultsOfAnswers : public Faults, public testing::WithParamInterface<Fault> {};

TEST_P(FaultsOfAnswers, LeaveThePersonFreeToOpenTheNextFilm) {
    const Fault &fault = GetParam();
    {
        SCOPED_TRACE("at the lookup");
        stub.on(Session::lookupPath, fault.reply);
        openFilm();
        expect(fault.atLookup);
    }
    for (const QByteArray &step : {QByteArray("subtitle"), Session::uploadPath}) {
        SCOPED_TRACE(step.toStdString());
        session.answerAsUsual();
        offerOneSubtitle();
        stub.on(step, fault.reply);
        openFilm();
        expect(fault.atOtherSteps);
        EXPECT_FALSE(stub.requestsTo(step).isEmpty());
    }
    {
        SCOPED_TRACE("at the film's page");
        session.answerAsUsual();
        stub.on("Player/Play", fault.reply);
        openFilm();
        EXPECT_TRUE(waitUntil([this] { return session.isFilmShown(); }));
        EXPECT_TRUE(waitUntil([this] { return !session.playerPages().isEmpty(); }));
    }
    expectAHealthyFilm();
}

INSTANTIATE_TEST_SUITE_P(All, FaultsOfAnswers, testing::ValuesIn(faults()),
                         [](const auto &fault) { return std::string(fault.param.name); });

TEST_F(Faults, AnAnswerFromAnotherHostIsTakenAtEachStep) {
    StubService other;
    other.on("lookup", {.contentType = "application/json", .body = emptyReply});
    other.on("subtitle", {.body = "from elsewhere"});
    other.on("page", StubReply{.body = player.document(Session::playerBody)});
    other.on("jquery.js", [this](const RecordedRequest &) {
        return StubReply{.status = 301,
                         .extraHeaders = {"Location: " + stub.baseUrl().toLatin1() + "jquery.js"}};
    });
    const auto to = [&other](const QByteArray &path) {
        return StubReply{.status = 301, .extraHeaders = {"Location: " + other.baseUrl().toLatin1() + path}};
    };
    offerOneSubtitle();
    stub.on("subtitle", to("subtitle"));
    stub.on("Player/Play", to("page"));
    openFilm();
    expect(Outcome::Film);
    ASSERT_EQ(session.uploads().size(), 1);
    EXPECT_TRUE(session.uploads()[0].body.contains("from elsewhere"));
    stub.on(Session::lookupPath, to("lookup"));
    openFilm();
    expect(Outcome::Film);
    EXPECT_EQ(other.requestsTo("lookup").size(), 1);
    expectAHealthyFilm();
}

TEST_F(Faults, AServiceThatIsKilledAndStartedAgainBetweenAnyTwoStepsIsFoundAgain) {
    // Each step's answer is the last before the service goes.
    const auto thenDown = [this](const StubReply &reply) {
        return [this, reply](const RecordedRequest &) {
            QTimer::singleShot(0, &stub, [this] { stub.goDown(); });
            return reply;
        };
    };
    stub.goDown();
    openFilm();
    expect(Outcome::Warning);

    stub.comeBack();
    offerOneSubtitle();
    stub.on("subtitle", thenDown({.body = "1"}));
    stub.on(Session::uploadPath, {.isReset = true}); // should the request be quicker than the end
    openFilm();
    EXPECT_TRUE(waitUntil([this] { return session.isFilmShown(); })) << "without its page";
    EXPECT_TRUE(waitUntil([this] { return program.logged("Met an error uploading subtitles").size() == 1; }))
        << program.log().toStdString();
    stub.comeBack();
    EXPECT_TRUE(waitUntil([this] { return session.isFilmPlaying(); })) << "the page comes by itself";

    stub.on("subtitle", {.body = "1"});
    stub.on(Session::uploadPath, thenDown({}));
    openFilm();
    EXPECT_TRUE(waitUntil([this] { return session.isFilmShown(); }));
    stub.comeBack();
    EXPECT_TRUE(waitUntil([this] { return session.isFilmPlaying(); })) << "the page comes by itself";

    stub.goDown();
    session.goHome();
    stub.comeBack();
    expectAHealthyFilm();
}

} // namespace murvo::test
