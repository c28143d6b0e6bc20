// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Media/SoundPlayer.h"

#include "app/Media/VLCMediaPlayer.h"

#include <algorithm>

namespace murvo {

namespace {

bool hasAudio(const VLCMedia &media) {
    const QList<VLCTrackInformation> tracks = media.tracksInformation();
    return std::any_of(tracks.cbegin(), tracks.cend(),
                       [](const VLCTrackInformation &track) { return track.type == QLatin1String("audio"); });
}

} // namespace

SoundPlayer::SoundPlayer(const VLCInstance &instance, QByteArray data, QObject *parent)
    : QObject(parent)
    , _player(std::make_unique<VLCMediaPlayer>(instance, nullptr)) {
    _player->setMedia(VLCMedia::mediaWithData(instance, std::move(data)));
    connect(_player.get(), &VLCMediaPlayer::stateChanged, this, [this] {
        // The library plays a text to its end, too, without a sound.
        const bool isNoSound = _player->state() == VLCMediaPlayerStateEnded && !hasAudio(*_player->media());
        if (_player->state() == VLCMediaPlayerStateError || isNoSound)
            Q_EMIT failed(QStringLiteral("the data cannot be played as a sound"));
    });
}

SoundPlayer::~SoundPlayer() = default;

void SoundPlayer::play() {
    _player->play();
}

} // namespace murvo
