// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/AppDelegate.h"

#include "app/Classes/AudioTrackText.h"
#include "app/Classes/MConstants.h"
#include "app/Classes/PageScripts.h"
#include "app/Classes/VideoFit.h"
#include "app/Media/VLCMediaPlayer.h"
#include "app/Media/VLCVideoView.h"
#include "app/Platform/Log.h"
#include "app/Platform/MainWindow.h"
#include "app/ViewControllers/LoaderViewController.h"
#include "app/ViewControllers/VLCVideoViewController.h"
#include "app/ViewControllers/WebViewController.h"

#include <QScreen>

#include <algorithm>

namespace murvo {

namespace {

constexpr int maximumVolume = 200;

bool isOpen(const Deferred::Ptr &deferred) {
    return deferred && !deferred->promise()->isResolved();
}

QString audioInfo(const VLCMediaPlayer &player) {
    const QStringList names = player.audioTrackNames();
    const QList<int> indexes = player.audioTrackIndexes();
    QMap<int, QString> nameByIndex;
    for (qsizetype i = 0; i < qMin(names.size(), indexes.size()); ++i)
        nameByIndex.insert(indexes[i], names[i]);
    return audioTrackText(nameByIndex, player.currentAudioTrackIndex());
}

} // namespace

void AppDelegate::launchVideo() {
    loadPlayerScreen();
    _durationDeferred = Deferred::deferred();
    _audioInfoDeferred = Deferred::deferred();
    _playbackSpeedDeferred = Deferred::deferred();
    _volumeDeferred = Deferred::deferred();

    loadPlayerPage();

    VLCMediaPlayer &launched = _vlcVideoViewController->player();
    launched.setVolume(maximumVolume);
    _vlcVideoViewController->view()->setBackColor(Qt::black);
    launched.setMedia(isUrl() ? VLCMedia::mediaWithURL(_vlc, QUrl(_session.videoSourcePath))
                              : VLCMedia::mediaWithPath(_vlc, _session.videoSourcePath));
    if (launched.media())
        launched.play();
    else
        alertVideoPlayingError(); // the library itself is missing or broken
    _loaderViewController->hideLoader();
}

void AppDelegate::loadPlayerPage() {
    if (!isPlayerScreenVisible())
        return;
    const auto printedId = QString::number(static_cast<quint64>(_session.videoId));
    // The page that belongs to the film, which the video's controller knows.
    _vlcVideoViewController->webViewController().loadUrl(
        MConstants::serviceAddress(QStringLiteral("Player/Play?videoId=") + printedId));
}

void AppDelegate::mediaPlayerStateChanged() {
    if (_alert)
        return; // the film has failed; the person is reading so
    VLCMediaPlayer &changed = _vlcVideoViewController->player();
    const VLCMediaPlayerState state = changed.state();
    if (state != VLCMediaPlayerStateError && !_session.aspectRatioSet)
        fitWindowToVideo();

    if (state == VLCMediaPlayerStatePaused) {
        constexpr qint64 msPerSecond = 1000;
        if (changed.time().intValue() / msPerSecond >= changed.media()->length().intValue() / msPerSecond)
            loadHomeScreen();
    } else if (state == VLCMediaPlayerStateError) {
        alertVideoPlayingError();
    }

    if (changed.currentVideoSubTitleIndex() != -1) // the page draws the subtitles
        changed.setCurrentVideoSubTitleIndex(-1);
}

void AppDelegate::fitWindowToVideo() {
    const QList<VLCTrackInformation> tracks = _vlcVideoViewController->player().media()->tracksInformation();
    const auto video = std::find_if(tracks.cbegin(), tracks.cend(), [](const VLCTrackInformation &track) {
        return track.type == QLatin1String("video");
    });
    // A track can be known before its size is.
    if (video == tracks.cend() || video->width == 0 || video->height == 0)
        return;
    const QSize size(static_cast<int>(video->width), static_cast<int>(video->height));
    const QScreen *screen = _window->screen();
    _window->setContentAspectRatio(size);
    _window->setContentSize(fitVideo(size, screen ? screen->geometry().size() : QSize(0, 0)));
    _window->center();
    _session.aspectRatioSet = true;
}

void AppDelegate::alertVideoPlayingError() {
    alertThenHome(
        QStringLiteral("Couldn't open video"),
        QStringLiteral("Murvo failed to open your video - if you feel that we should have been able to "
                       "play this file, please report your problem to us at ") +
            MConstants::supportAddress);
}

void AppDelegate::mediaPlayerTimeChanged() {
    const VLCMediaPlayer &playing = _vlcVideoViewController->player();
    sendToPlayerPage(PageScripts::timeUpdate(playing.time().intValue()));

    if (isOpen(_volumeDeferred)) {
        const int volume = playing.volume();
        if (volume >= 1 && volume <= maximumVolume)
            _volumeDeferred->resolve(volume);
    }
    if (isOpen(_durationDeferred)) {
        if (const auto length = playing.media()->length().numberValue())
            _durationDeferred->resolve(*length);
    }
    if (isOpen(_audioInfoDeferred) && !playing.audioTrackNames().isEmpty())
        _audioInfoDeferred->resolve(audioInfo(playing));
    if (isOpen(_playbackSpeedDeferred)) {
        const float rate = playing.rate();
        if (rate >= 0.0F)
            _playbackSpeedDeferred->resolve(rate);
    }
}

} // namespace murvo
