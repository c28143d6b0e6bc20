// SPDX-License-Identifier: GPL-3.0-or-later
#include "conformance/Session.h"

#include "conformance/Screen.h"
#include "support/Wait.h"
#include "support/XTools.h"

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>

namespace murvo::test {

using namespace std::chrono_literals;

namespace {

constexpr QRgb homeColor = qRgb(0x1c, 0x4a, 0x6e);

QByteArray jQuery() {
    QFile file(QStringLiteral("/usr/share/javascript/jquery/jquery.min.js"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("jQuery is not installed");
    return file.readAll();
}

} // namespace

Session::Session() {
    stub.on("jquery.js", {.contentType = "text/javascript", .body = jQuery()});
    answerAsUsual();
}

void Session::answerAsUsual() {
    stub.on("Player/Home", StubReply{.body = home.document(homeBody)});
    stub.on("Player/Play", StubReply{.body = player.document(playerBody)});
    stub.on(lookupPath, {.contentType = "application/json", .body = R"({"videoId":7,"subsToDownload":[]})"});
    stub.on(uploadPath, StubReply{});
}

void Session::startAtHome() {
    start();
    ASSERT_TRUE(waitUntil([this] { return isHomeShown(); }, 20s)) << program.log().toStdString();
}

void Session::openUrl(const QString &address) {
    player.forget();
    QGuiApplication::clipboard()->setText(address);
    pressKey(QStringLiteral("ctrl+u"));
    ASSERT_TRUE(
        waitUntil([this] { return program.dialog().exists() && XWindow::active() == program.dialog(); }));
    pressKey(QStringLiteral("Return"));
}

void Session::playFilm(const QString &path) {
    player.forget();
    ASSERT_TRUE(Screen::drop({QUrl::fromLocalFile(path)}, content().center())) << path.toStdString();
    ASSERT_TRUE(waitUntil([this] { return isFilmPlaying(); })) << program.log().toStdString();
}

void Session::goHome() {
    const auto waitForRest = [this] {
        EXPECT_TRUE(waitUntil([this] { return isHomeShown() || isFilmShown() || program.dialog().exists(); }))
            << program.log().toStdString();
    };
    waitForRest();
    // A dialog may stand over another one, when the test before has failed.
    bool isClosed = true;
    for (XWindow dialog = program.dialog(); dialog.exists() && isClosed; dialog = program.dialog()) {
        dialog.close();
        isClosed = waitUntil([&] { return !(program.dialog() == dialog); });
        EXPECT_TRUE(isClosed);
        waitForRest();
    }
    const qsizetype before = home.count("refreshLevel");
    if (!isFilmShown())
        return;
    program.mainWindow().close();
    EXPECT_TRUE(waitUntil([&] { return isHomeShown() && home.count("refreshLevel") > before; }))
        << program.log().toStdString();
}

void Session::end() {
    program.terminate();
    EXPECT_TRUE(program.waitForEnd());
    EXPECT_EQ(program.exitStatus(), 0);
    program.expectOnlyLogLines();
    EXPECT_TRUE(program.log().trimmed().endsWith(QLatin1String("Ended in order")))
        << program.log().toStdString();
}

bool Session::isHomeShown() const {
    if (!home.isOpen() || program.videoWindow().exists() || program.dialog().exists() ||
        !program.mainWindow().isViewable())
        return false;
    const QImage seen = Screen::picture(content());
    return seen.pixel(seen.rect().center()) == homeColor && seen.pixel(5, 5) == homeColor;
}

bool Session::isFilmPlaying() const {
    return program.mainWindow().isViewable() && program.videoWindow().isViewable() &&
           program.pageWindow().isViewable() && player.count("opened") == 1 && player.timeMs() > 0;
}

bool Session::showsLoader(const QString &text) const {
    return Screen::shows(Screen::loaderText(text), content());
}

QRect Session::content() const {
    if (isFilmShown())
        return program.pageWindow().geometry();
    constexpr int homeHeight = 400;
    const QRect window = program.mainWindow().geometry();
    return {window.left(), window.bottom() - homeHeight + 1, window.width(), homeHeight};
}

void Session::expectWarning(const QString &message, const QString &informativeText) {
    EXPECT_TRUE(waitUntil([&] { return Screen::isWarning(program.dialog(), message, informativeText); }))
        << program.log().toStdString();
    ASSERT_TRUE(waitUntil([this] { return XWindow::active() == program.dialog(); }));
    const qsizetype before = home.count("refreshLevel");
    pressKey(QStringLiteral("Return"));
    EXPECT_TRUE(waitUntil([&] { return isHomeShown() && home.count("refreshLevel") == before + 1; }));
}

void Session::settle() {
    const qsizetype before = player.answers("settled").size();
    player.send("app:///Request/IsFullscreen?guid=settled");
    EXPECT_TRUE(waitUntil([&] { return player.answers("settled").size() > before; }));
}

void Running::SetUpTestSuite() {
    _shared = std::make_unique<Session>();
    _shared->startAtHome();
}

void Running::TearDownTestSuite() {
    _shared->end();
    _shared.reset();
}

void Running::SetUp() {
    session.answerAsUsual();
    if (program.isRunning())
        session.goHome();
    else
        session.startAtHome();
    stub.forgetRequests();
    home.forget();
    player.forget();
    program.forgetLog();
}

} // namespace murvo::test
