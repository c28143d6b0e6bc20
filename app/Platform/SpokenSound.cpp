// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Platform/SpokenSound.h"

#include "app/Media/SoundPlayer.h"
#include "app/Platform/Log.h"

#include <QUrl>

namespace murvo {

namespace {

void logNothingLoaded() {
    qCWarning(logSound, "Error initializing data for AVAudioPlayer.  Possibly Malformed URL");
}

} // namespace

SpokenSound::SpokenSound(const VLCInstance &vlc, QObject *parent)
    : QObject(parent)
    , _vlc(vlc) {}

SpokenSound::~SpokenSound() = default;

void SpokenSound::play(const QString &encodedUrl) {
    const QString url = QUrl::fromPercentEncoding(encodedUrl.toUtf8());
    qCInfo(logSound).noquote() << "Speak for:" << singleLine(url);

    const auto fetched = std::make_shared<QByteArray>();
    HttpHandlers handlers;
    handlers.didReceiveData = [fetched](const QByteArray &chunk) {
        fetched->append(chunk);
        return HttpFlow::More;
    };
    handlers.didFailWithError = [](const QString &) { logNothingLoaded(); };
    handlers.didFinishLoading = [this, fetched, number = ++_lastAsked] {
        if (fetched->isEmpty())
            logNothingLoaded();
        else
            playData(*fetched, number);
    };
    _connections.start({.method = "GET", .url = QUrl(url)}, std::move(handlers));
}

void SpokenSound::playData(const QByteArray &data, unsigned number) {
    if (number < _lastPlayed)
        return;
    _lastPlayed = number;
    _avPlayer = std::make_unique<SoundPlayer>(_vlc, data);
    connect(_avPlayer.get(), &SoundPlayer::failed, this, [](const QString &description) {
        qCWarning(logSound).noquote() << "Speak Error:" << description;
    });
    _avPlayer->play();
}

} // namespace murvo
