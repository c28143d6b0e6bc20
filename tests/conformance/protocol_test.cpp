// SPDX-License-Identifier: GPL-3.0-or-later
// The page protocol as its document tells it: each row of its tables is tried on one film.

#include "conformance/Session.h"
#include "support/SoundRecorder.h"
#include "support/TestFilms.h"
#include "support/Wait.h"
#include "support/XTools.h"

#include <QFile>
#include <QJsonObject>
#include <QRegularExpression>
#include <QUrl>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>

namespace murvo::test {

using namespace std::chrono_literals;

namespace {

struct TableRow {
    QString name;     ///< one of those in the first cell
    QString argument; ///< the first word in backticks of the second cell; empty without one
};

/// The names in backticks of the cell.
QStringList codeOf(const QString &cell) {
    QStringList found;
    auto codes = QRegularExpression(QStringLiteral("`([^`]+)`")).globalMatch(cell);
    while (codes.hasNext())
        found.append(codes.next().captured(1));
    return found;
}

/// The rows of the tables below the heading, in order. One cell may name several things.
QList<TableRow> rowsBelow(const QString &heading) {
    QFile file(QStringLiteral(MURVO_PAGE_PROTOCOL));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const QString section = (u'\n' + QString::fromUtf8(file.readAll()))
                                .section(QStringLiteral("# ") + heading, 1, 1)
                                .section(QStringLiteral("\n#"), 0, 0);
    QList<TableRow> rows;
    const QStringList lines = section.split(u'\n').filter(QRegularExpression(QStringLiteral("^\\| *`")));
    for (const QString &line : lines) {
        const QStringList cells = line.split(u'|');
        const QStringList names = codeOf(cells.value(1));
        for (const QString &name : names)
            rows.append({.name = name, .argument = codeOf(cells.value(2)).value(0)});
    }
    return rows;
}

/// Whether the row holds, for the argument that it names.
using Check = std::function<bool(const QByteArray &argument)>;
using Checks = std::map<QString, Check>;

void walk(const QString &heading, const Checks &checks) {
    const QList<TableRow> rows = rowsBelow(heading);
    for (const TableRow &row : rows) {
        const auto check = checks.find(row.name);
        if (check == checks.end())
            ADD_FAILURE() << heading.toStdString() << " tells of " << row.name.toStdString()
                          << ", which is not tried";
        else
            EXPECT_TRUE(check->second(row.argument.toUtf8())) << row.name.toStdString();
    }
    for (const auto &[name, check] : checks) {
        const bool isTold =
            std::any_of(rows.begin(), rows.end(), [&](const TableRow &row) { return row.name == name; });
        EXPECT_TRUE(isTold) << heading.toStdString() << " tells nothing of " << name.toStdString();
    }
}

} // namespace

class Protocol : public Starting {
  protected:
    void SetUp() override {
        program.installBrowser();
        ASSERT_NO_FATAL_FAILURE(session.startAtHome());
        ASSERT_NO_FATAL_FAILURE(session.playFilm(filmWithTwoAudioTracks()));
    }

    void command(const QByteArray &nameAndArguments) { player.send("app:///Execute/" + nameAndArguments); }
    [[nodiscard]] bool sounds(double frequencyHz) {
        return waitUntil([&] { return recorder.amplitudeOf(frequencyHz) > 0.02; });
    }
    [[nodiscard]] bool isSilent() {
        return waitUntil([this] { return recorder.amplitudeOf(220) < 0.002; });
    }
    [[nodiscard]] bool moves() {
        session.settle();
        player.forget();
        return waitUntil([this] { return player.timeMs() >= 0; }, 800ms);
    }
    /// Times as fast as the clock, over the last reports.
    [[nodiscard]] double speed() const {
        const QList<PageEvent> reports = player.events(QStringLiteral("timeUpdate"));
        if (reports.size() < 5)
            return 0;
        const PageEvent &from = reports[reports.size() - 5];
        const PageEvent &to = reports.last();
        return (to.values[0].toDouble() - from.values[0].toDouble()) / (to.atMs - from.atMs);
    }
    /// The answer to the request, with its name as the guid.
    [[nodiscard]] QJsonValue answer(const char *name) {
        player.send(QByteArray("app:///Request/") + name + "?guid=" + name);
        EXPECT_TRUE(waitUntil([&] { return !player.answers(name).isEmpty(); })) << name;
        return player.answers(name).at(0);
    }
    [[nodiscard]] bool hears(const char *event) const {
        return waitUntil([&] { return player.count(event) > 0; });
    }

    [[nodiscard]] Checks pages();
    [[nodiscard]] Checks requests();
    [[nodiscard]] Checks events();
    [[nodiscard]] Checks commands();

    SoundRecorder recorder;
};

Checks Protocol::pages() {
    return {
        {QStringLiteral("Player/Home"),
         [this](auto &) { return stub.requestsTo("Player/Home").size() == 1; }},
        {QStringLiteral("Player/Play?videoId=N"),
         [this](auto &) { return session.playerPages().value(0).target == "/Player/Play?videoId=7"; }},
        {QStringLiteral("Account/Register"),
         [this](auto &) {
             std::ignore = player.evaluate(QStringLiteral("location.href = '/PlayerRegister'; 1"));
             const QString address = stub.baseUrl() + QStringLiteral("Account/Register");
             return waitUntil([&] { return program.takeOpenedAddress() == address; });
         }},
    };
}

Checks Protocol::requests() {
    return {
        {QStringLiteral("Duration"),
         [this](auto &) { return qAbs(answer("Duration").toInt() - 20000) < 200; }},
        {QStringLiteral("Volume"), [this](auto &) { return answer("Volume") == 200; }},
        {QStringLiteral("PlaybackSpeed"), [this](auto &) { return answer("PlaybackSpeed") == 1; }},
        {QStringLiteral("AudioInfo"),
         [this](auto &) {
             std::ignore = player.evaluate(QStringLiteral("window.Low = 'L'; window.High = 'H'; 1"));
             const QJsonObject info = answer("AudioInfo").toObject();
             return info[QLatin1String("audioTrack")] == 1 &&
                    info[QLatin1String("audioTracks")] ==
                        QJsonObject{{QStringLiteral("1"), QStringLiteral("L")},
                                    {QStringLiteral("2"), QStringLiteral("H")}};
         }},
        {QStringLiteral("IsFullscreen"), [this](auto &) { return answer("IsFullscreen") == false; }},
        {QStringLiteral("FileName"),
         [this](auto &) { return answer("FileName") == QStringLiteral("two-tracks.mkv"); }},
    };
}

Checks Protocol::events() {
    return {
        {QStringLiteral("timeUpdate"), [this](auto &) { return hears("timeUpdate"); }},
        {QStringLiteral("nativeApp:resized"),
         [this](auto &) {
             player.forget();
             command("ResizeForPayment");
             return hears("nativeApp:resized");
         }},
        {QStringLiteral("nativeApp:enteredFullscreen"),
         [this](auto &) {
             pressKey(QStringLiteral("F11"));
             return hears("nativeApp:enteredFullscreen") &&
                    waitUntil([this] { return XWindow::active() == program.pageWindow(); });
         }},
        {QStringLiteral("nativeApp:leftFullscreen"),
         [this](auto &) {
             pressKey(QStringLiteral("F11"));
             return hears("nativeApp:leftFullscreen");
         }},
        {QStringLiteral("response:GUID"),
         [this](auto &) {
             player.send("app:///Request/IsFullscreen?guid=GUID");
             return hears("response:GUID");
         }},
        {QStringLiteral("refreshLevel"),
         [this](auto &) {
             session.goHome();
             return home.count("refreshLevel") == 1;
         }},
    };
}

Checks Protocol::commands() {
    return {
        {QStringLiteral("SeekTo"),
         [this](const QByteArray &argument) {
             command("SeekTo?" + argument + "=10");
             return waitUntil([this] { return player.timeMs() >= 10000; });
         }},
        {QStringLiteral("SetMuted"),
         [this](const QByteArray &argument) {
             command("SetMuted?" + argument + "=yes");
             return isSilent();
         }},
        {QStringLiteral("SetVolume"),
         [this](const QByteArray &argument) {
             command("SetVolume?" + argument + "=200");
             return sounds(220);
         }},
        {QStringLiteral("Play"),
         [this](auto &) {
             command("Pause");
             session.settle();
             command("Play");
             return moves();
         }},
        {QStringLiteral("Pause"),
         [this](auto &) {
             command("Pause");
             return !moves();
         }},
        {QStringLiteral("Stop"),
         [this](auto &) {
             command("Stop");
             return waitUntil([this] { return session.isHomeShown(); });
         }},
        {QStringLiteral("EnableDraggableHomeScreen"),
         [this](auto &) {
             player.forget();
             EXPECT_EQ(program.startAgain({filmWithTwoAudioTracks()}), 0);
             home.send("app:///Execute/EnableDraggableHomeScreen");
             return waitUntil([this] { return session.isFilmPlaying(); });
         }},
        {QStringLiteral("SetPlaybackSpeed"),
         [this](const QByteArray &argument) {
             command("SetPlaybackSpeed?" + argument + "=2.0");
             return waitUntil([this] { return speed() > 1.7; });
         }},
        {QStringLiteral("SetAudioTrack"),
         [this](const QByteArray &argument) {
             command("SetAudioTrack?" + argument + "=2");
             return sounds(880);
         }},
        {QStringLiteral("ResizeForTutorial"),
         [this](auto &) {
             command("ResizeForTutorial");
             return waitUntil([this] { return session.content().size() == QSize(907, 510); });
         }},
        {QStringLiteral("ResizeForPayment"),
         [this](auto &) {
             command("ResizeForPayment");
             const bool isLarge = waitUntil([this] { return session.content().size() == QSize(1105, 570); });
             command("ResizeForTutorial"); // high enough already
             session.settle();
             letPass(200ms);
             return isLarge && session.content().size() == QSize(1105, 570);
         }},
        {QStringLiteral("PlayAudio"),
         [this](const QByteArray &argument) {
             stub.on("a%20word.wav", {.contentType = "audio/wav", .body = toneFile(1500, 1.5)});
             command("PlayAudio?" + argument + "=" +
                     QUrl::toPercentEncoding(stub.baseUrl() + QStringLiteral("a%20word.wav")));
             return sounds(1500);
         }},
    };
}

TEST_F(Protocol, HoldsForEachRowOfItsTables) {
    walk(QStringLiteral("Pages"), pages());
    walk(QStringLiteral("Requests"), requests());
    walk(QStringLiteral("From player to page"), events());
    ASSERT_NO_FATAL_FAILURE(session.playFilm(filmWithTwoAudioTracks()));
    walk(QStringLiteral("Commands"), commands());
    session.end();
}

} // namespace murvo::test
