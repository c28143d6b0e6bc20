// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/LearnerFixture.h"

#include "app/AppDelegate.h"
#include "app/Classes/MConstants.h"
#include "app/Classes/MDragReceiverWebView.h"
#include "app/Classes/MKeyableWindow.h"
#include "app/Media/VLCMediaPlayer.h"
#include "app/Platform/MainWindow.h"
#include "app/Platform/TaskQueue.h"
#include "app/ViewControllers/WebViewController.h"
#include "service/EmbeddedService.h"
#include "support/DesktopEnvironment.h"
#include "support/TestFilms.h"
#include "support/Wait.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace murvo::test {

using namespace std::chrono_literals;

QByteArray subtitles(const QByteArray &word, int count) {
    QByteArray text;
    for (int i = 0; i < count; ++i) {
        const auto time = [](int second) {
            return QByteArray("00:00:") + QByteArray::number(second).rightJustified(2, '0');
        };
        text += QByteArray::number(i + 1) + "\n" + time(1 + 2 * i) + ",000 --> " + time(2 + 2 * i) +
                ",000\n" + word + " " + QByteArray::number(i + 1) + "\n\n";
    }
    return text;
}

Learner::Learner() {
    QString error;
    service = service::EmbeddedService::start(_data.filePath(QStringLiteral("murvo")), error,
                                              [this](const QString &path, const std::function<bool()> &take) {
                                                  TaskQueue::mainQueue().async([this, path, take] {
                                                      if (take())
                                                          delegate->applicationOpenFile(path);
                                                  });
                                              });
    if (!service)
        throw std::runtime_error(error.toStdString());
    MConstants::setMurvoBaseUrl(service->baseUrl());
    AppDelegate::ServiceLink link;
    link.filmIdentified = [this](const QString &path, const VideoHash &hash) {
        service->filmIdentified(path, hash.fileHash, hash.fileSize);
    };
    link.filmPending = [this] { service->filmPending(); };
    delegate = std::make_unique<AppDelegate>(DesktopEnvironment::profile(), DesktopEnvironment::vlc(),
                                             std::move(link));
    film = _data.filePath(QStringLiteral("A Film.mkv"));
    useFilm(filmWithTwoAudioTracks());
}

Learner::~Learner() = default;

void Learner::useFilm(const QString &path) const {
    QFile::remove(film);
    ASSERT_TRUE(QFile::copy(path, film));
}

void Learner::bringFilm(const QString &path) {
    QFile::remove(film);
    const QFileInfo own(path);
    film = _data.filePath(own.fileName());
    ASSERT_TRUE(QFile::copy(path, film));
    const QStringList subtitles = own.dir().entryList({own.completeBaseName() + QStringLiteral("*.srt")});
    for (const QString &name : subtitles)
        ASSERT_TRUE(QFile::copy(own.dir().filePath(name), _data.filePath(name)));
}

void Learner::writeBeside(const QString &suffix, const QByteArray &text) const {
    QFile file(_data.filePath(QStringLiteral("A Film")) + suffix);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
}

void Learner::play() {
    delegate->applicationOpenFile(film);
    delegate->applicationDidFinishLaunching();
    ASSERT_TRUE(waitUntil([this] { return player() && player()->isPlaying(); }, 20s));
    ASSERT_TRUE(waitUntil([this] {
        return inPage("!!document.querySelector('#next-sub') && document.readyState") ==
               QLatin1String("complete");
    }));
    ASSERT_TRUE(waitUntil([this] { return delegate->playerWebViewWindow()->isActiveWindow(); }));
}

void Learner::goHome() {
    delegate->applicationDidFinishLaunching();
    ASSERT_TRUE(waitUntil([this] { return delegate->session().homeScreenLoaded; }));
    ASSERT_TRUE(waitUntil([this] { return delegate->window().isActiveWindow(); }));
    delegate->homeWebViewController()->view()->setFocus();
}

VLCMediaPlayer *Learner::player() const {
    return delegate->player();
}

qint64 Learner::time() const {
    return player()->time().intValue();
}

QString Learner::inPage(const char *script) const {
    return delegate->playerWebViewController()->evaluate(QString::fromUtf8(script));
}

QString Learner::inHome(const char *script) const {
    return delegate->homeWebViewController()->evaluate(QString::fromUtf8(script));
}

QString Learner::line(const char *id) const {
    return inPage(("(e => e.hidden ? '' : e.textContent)(document.getElementById('" + QByteArray(id) + "'))")
                      .constData());
}

int Learner::lineNumber() const {
    return line("learned").section(u' ', 1).toInt();
}

QPoint Learner::middleOf(const char *selector) const {
    const QByteArray script = "(r => Math.round(r.x + r.width / 2) + ' ' + Math.round(r.y + r.height / 2))"
                              "(document.querySelector('" +
                              QByteArray(selector) + "').getBoundingClientRect())";
    const QStringList numbers = inPage(script.constData()).split(u' ');
    return delegate->window().contentScreenRect().topLeft() +
           QPoint(numbers.value(0).toInt(), numbers.value(1).toInt());
}

void Learner::expectPaused(bool isPaused) const {
    EXPECT_TRUE(waitUntil([&] { return player()->isPlaying() != isPaused; })) << "paused: " << isPaused;
}

bool Learner::waitInPage(const char *script) const {
    return waitUntil([&] { return inPage(script) == QLatin1String("true"); });
}

bool Learner::waitInHome(const char *script) const {
    return waitUntil([&] { return inHome(script) == QLatin1String("true"); });
}

} // namespace murvo::test
