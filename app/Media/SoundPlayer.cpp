// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Media/SoundPlayer.h"

#include "app/Media/VLCMediaPlayer.h"

namespace murvo {

SoundPlayer::SoundPlayer(const VLCInstance &instance, QByteArray data, QObject *parent)
    : QObject(parent)
    , _player(std::make_unique<VLCMediaPlayer>(instance, nullptr)) {
    _player->setMedia(VLCMedia::mediaWithData(instance, std::move(data)));
    connect(_player.get(), &VLCMediaPlayer::stateChanged, this, [this] {
        if (_player->state() == VLCMediaPlayerStateError)
            Q_EMIT failed(QStringLiteral("the data cannot be played as a sound"));
    });
}

SoundPlayer::~SoundPlayer() = default;

void SoundPlayer::play() {
    _player->play();
}

} // namespace murvo
