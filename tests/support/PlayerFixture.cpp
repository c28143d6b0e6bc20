// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/PlayerFixture.h"

#include "app/Classes/MConstants.h"
#include "app/Classes/MDragReceiverWebView.h"
#include "app/Classes/MKeyableWindow.h"
#include "app/Media/VLCInstance.h"
#include "app/Media/VLCMediaPlayer.h"
#include "app/Platform/MainWindow.h"
#include "app/ViewControllers/LoaderViewController.h"
#include "app/ViewControllers/WebViewController.h"
#include "support/DesktopEnvironment.h"
#include "support/Wait.h"

#include <QApplication>
#include <QFile>
#include <QJsonDocument>

namespace murvo::test {

namespace {

QByteArray page(const QByteArray &body) {
    return "<!doctype html><html><head><script src='/jquery.js'></script></head><body style='margin:0'>" +
           body + "</body></html>";
}

const QByteArray homePage = page(R"html(
    <div id="selectedLanguage"><span class="flag small fra"></span></div>
    <script>
      window.events = [];
      $(window).on('refreshLevel', event => events.push(event.type));
      $(() => { location.href = 'app:///Execute/EnableDraggableHomeScreen'; });
    </script>)html");

const QByteArray playerPage = page(R"html(
    <div id="next-sub" style="position:fixed;bottom:0;left:0;right:0;height:60px;background:#0008"></div>
    <script>
      window.events = []; window.times = []; window.answers = {}; window.keys = [];
      $(window).on('timeUpdate', (event, time) => times.push(time));
      $(window).on('nativeApp:resized nativeApp:enteredFullscreen nativeApp:leftFullscreen',
                   event => events.push(event.type));
      $(document).on('dblclick', () => events.push('dblclick'));
      $(document).on('keydown', event => keys.push(event.key));
      function listen(guid) {
        answers[guid] = [];
        $(window).on('response:' + guid, (event, value) => answers[guid].push(JSON.stringify(value)));
      }
      function ask(url) {
        const frame = document.createElement('iframe');
        frame.hidden = true;
        frame.src = url;
        document.body.append(frame);
      }
    </script>)html");

QByteArray jQuery() {
    QFile file(QStringLiteral("/usr/share/javascript/jquery/jquery.min.js"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("jQuery is not installed");
    return file.readAll();
}

} // namespace

PlayerFixture::PlayerFixture() {
    stub.on("jquery.js", {.contentType = "text/javascript", .body = jQuery()});
    stub.on("Player/Home", StubReply{.body = homePage});
    stub.on("Player/Play", StubReply{.body = playerPage});
    stub.on("Api/MovieFile/GetSubtitlesToDownload",
            {.contentType = "application/json", .body = R"({"videoId":7,"subsToDownload":[]})"});
    stub.on("Api/Subtitles/UploadGzippedFiles", StubReply{});
    MConstants::setMurvoBaseUrl(stub.baseUrl());
    delegate = std::make_unique<AppDelegate>(DesktopEnvironment::profile(), DesktopEnvironment::vlc());
}

PlayerFixture::~PlayerFixture() = default;

void PlayerFixture::startAtHome() {
    delegate->applicationDidFinishLaunching();
    ASSERT_TRUE(waitUntil([this] { return delegate->session().homeScreenLoaded && isHomeShown(); }))
        << "home page is not ready";
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&delegate->window()));
}

void PlayerFixture::startFilm(const QString &path) {
    ASSERT_NO_FATAL_FAILURE(startAtHome());
    delegate->processVideoAndLaunch(path);
    ASSERT_TRUE(waitUntil([this] { return isFilmShown() && delegate->player()->isPlaying(); }));
    ASSERT_TRUE(waitUntil(
        [this] { return inPlayerPage(QStringLiteral("typeof times")) == QLatin1String("object"); }));
    ASSERT_TRUE(waitUntil(
        [this] { return inPlayerPage(QStringLiteral("times.length > 1")) == QLatin1String("true"); }));
}

QString PlayerFixture::inPlayerPage(const QString &script) const {
    return delegate->playerWebViewController()->evaluate(script);
}

QString PlayerFixture::inHomePage(const QString &script) const {
    return delegate->homeWebViewController()->evaluate(script);
}

void PlayerFixture::playerPageSends(const QString &url) const {
    const QString guid = QUrl(url).query().section(QStringLiteral("guid="), 1).section(u'&', 0, 0);
    std::ignore = inPlayerPage(QStringLiteral("listen('%1'); ask('%2'); 1").arg(guid, url));
}

void PlayerFixture::homePageSends(const QString &url) const {
    std::ignore = inHomePage(QStringLiteral("location.href = '%1'; 1").arg(url));
}

QStringList PlayerFixture::playerPageEvents() const {
    return inPlayerPage(QStringLiteral("events.join(' ')")).split(u' ', Qt::SkipEmptyParts);
}

QStringList PlayerFixture::answersTo(const QString &guid) const {
    const QString answers = inPlayerPage(QStringLiteral("JSON.stringify(answers['%1'] || [])").arg(guid));
    QStringList texts;
    const QJsonArray array = QJsonDocument::fromJson(answers.toUtf8()).array();
    for (const QJsonValue value : array)
        texts.append(value.toString());
    return texts;
}

bool PlayerFixture::isHomeShown() const {
    return delegate->homeWebViewController()->view()->isVisible() &&
           delegate->loaderViewController()->isLabelHidden() && !isFilmShown();
}

bool PlayerFixture::isFilmShown() const {
    return delegate->playerWebViewWindow() && delegate->playerWebViewWindow()->isVisible();
}

QMessageBox *PlayerFixture::alert() {
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        auto *box = qobject_cast<QMessageBox *>(window);
        if (box && box->isVisible())
            return box;
    }
    return nullptr;
}

} // namespace murvo::test
