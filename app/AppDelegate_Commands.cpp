// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/AppDelegate.h"

#include "app/Classes/LenientNumber.h"
#include "app/Classes/MDragReceiverWebView.h"
#include "app/Media/VLCMediaPlayer.h"
#include "app/Platform/MainWindow.h"
#include "app/ViewControllers/WebViewController.h"

#include <array>

namespace murvo {

namespace {

using Arguments = PageRequest::Arguments;

constexpr QSizeF paymentSize(1105, 570);
constexpr double tutorialHeight = 510;

/// A command that drives the player. On the home screen there is nothing to drive: it does nothing then.
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
            if (isPlayerScreenVisible())
                command.run(*player(), arguments);
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
        _spokenSound.play(arguments.value(QStringLiteral("audioUrl")));
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

} // namespace murvo
