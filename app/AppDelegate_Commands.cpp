// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/AppDelegate.h"

#include "app/Classes/LenientNumber.h"
#include "app/Classes/MDragReceiverWebView.h"
#include "app/Media/SoundPlayer.h"
#include "app/Media/VLCMediaPlayer.h"
#include "app/Platform/Log.h"
#include "app/Platform/MainWindow.h"
#include "app/ViewControllers/WebViewController.h"

#include <array>

namespace murvo {

namespace {

using Arguments = PageRequest::Arguments;

constexpr QSizeF paymentSize(1105, 570);
constexpr double tutorialHeight = 510;

/// A command that drives the player. There may be none yet: the command does nothing then.
struct PlayerCommand {
    const char *name;
    void (*run)(VLCMediaPlayer &player, const Arguments &arguments);
};

qint32 intArgument(const Arguments &arguments, const char *name) {
    return intValue(arguments.value(QLatin1String(name)));
}

constexpr std::array playerCommands = {
    PlayerCommand{"SeekTo",
                  [](VLCMediaPlayer &player, const Arguments &arguments) {
                      constexpr qint64 msPerSecond = 1000;
                      player.setTime(VLCTime::timeWithInt(intArgument(arguments, "position") * msPerSecond));
                  }},
    PlayerCommand{"SetMuted",
                  [](VLCMediaPlayer &player, const Arguments &arguments) {
                      player.setMute(boolValue(arguments.value(QStringLiteral("muted"))));
                  }},
    PlayerCommand{"SetVolume",
                  [](VLCMediaPlayer &player, const Arguments &arguments) {
                      player.setMute(false);
                      player.setVolume(intArgument(arguments, "volume"));
                  }},
    PlayerCommand{"Play", [](VLCMediaPlayer &player, const Arguments &) { player.play(); }},
    PlayerCommand{"Pause",
                  [](VLCMediaPlayer &player, const Arguments &) {
                      if (player.isPlaying())
                          player.pause();
                  }},
    PlayerCommand{"SetPlaybackSpeed",
                  [](VLCMediaPlayer &player, const Arguments &arguments) {
                      player.setRate(floatValue(arguments.value(QStringLiteral("speed"))));
                  }},
    PlayerCommand{"SetAudioTrack",
                  [](VLCMediaPlayer &player, const Arguments &arguments) {
                      player.setCurrentAudioTrackIndex(intArgument(arguments, "track"));
                  }},
};

} // namespace

void AppDelegate::handleExecutionRequest(const QString &name, const Arguments &arguments) {
    for (const PlayerCommand &command : playerCommands) {
        if (name == QLatin1String(command.name)) {
            if (VLCMediaPlayer *commanded = player())
                command.run(*commanded, arguments);
            return;
        }
    }
    if (name == QLatin1String("Stop"))
        loadHomeScreen();
    else if (name == QLatin1String("EnableDraggableHomeScreen"))
        enableDraggableHomeScreen();
    else if (name == QLatin1String("ResizeForTutorial"))
        resizeForTutorial();
    else if (name == QLatin1String("ResizeForPayment"))
        _window->setContentSize(paymentSize);
    else if (name == QLatin1String("PlayAudio"))
        playAudio(arguments.value(QStringLiteral("audioUrl")));
}

void AppDelegate::enableDraggableHomeScreen() {
    MDragReceiverWebView::isDraggable(true);
    _session.homeScreenLoaded = true;
    if (!_session.inputVideoSource.isNull())
        takeVideoIn(std::exchange(_session.inputVideoSource, {}));
}

void AppDelegate::resizeForTutorial() {
    // The frame's height decides, the content takes the new one: a window just under the limit stays legible.
    if (_window->frameGeometry().height() > tutorialHeight)
        return;
    const QSize ratio = _window->contentAspectRatio();
    if (!ratio.isEmpty())
        _window->setContentSize({tutorialHeight * ratio.width() / ratio.height(), tutorialHeight});
}

void AppDelegate::playAudio(const QString &encodedUrl) {
    const QString url = QUrl::fromPercentEncoding(encodedUrl.toUtf8());
    qCInfo(logSound).noquote() << "Speak for:" << url;
    _soundConnection.abandonAll(); // a word asked for later is the one to be heard

    struct Fetched {
        int status = 0;
        QByteArray data;
    };
    const auto fetched = std::make_shared<Fetched>();
    const auto reportNothing = [](const QString &) {
        qCInfo(logSound, "Error initializing data for AVAudioPlayer.  Possibly Malformed URL");
    };
    HttpHandlers handlers;
    handlers.didReceiveResponse = [fetched](const HttpResponse &response) {
        fetched->status = response.status;
    };
    handlers.didReceiveData = [fetched](const QByteArray &chunk) {
        fetched->data.append(chunk);
        return HttpFlow::More;
    };
    handlers.didFailWithError = reportNothing;
    handlers.didFinishLoading = [this, fetched, reportNothing] {
        if (fetched->status == 200 && !fetched->data.isEmpty())
            playSound(fetched->data);
        else
            reportNothing({});
    };
    _soundConnection.start({.method = "GET", .url = QUrl(url)}, std::move(handlers));
}

void AppDelegate::playSound(const QByteArray &data) {
    _avPlayer = std::make_unique<SoundPlayer>(_vlc, data);
    connect(_avPlayer.get(), &SoundPlayer::failed, this,
            [](const QString &description) { qCInfo(logSound).noquote() << "Speak Error:" << description; });
    _avPlayer->play();
}

} // namespace murvo
