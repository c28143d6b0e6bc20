// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Media/VLCMediaPlayer.h"

#include "app/Media/VLCHandles.h"
#include "app/Media/VLCInstance.h"
#include "app/Media/VLCPictureBuffer.h"
#include "app/Media/VLCVideoView.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <deque>

namespace murvo {

struct VLCMediaPlayer::Impl {
    VLCMediaPlayer *owner = nullptr;
    std::atomic<unsigned> generation = 0; // of the media; read on libVLC's threads
    VLCPictureBuffer *pictures = nullptr; // null: the library draws into the view
    const VLCMedia *media = nullptr;      // what plays; set while nothing does
    VLCHandle<libvlc_media_player_t> player;
    std::deque<VLCEventSubscription> subscriptions; // after the player, so detached before it goes

    static void onEvent(const libvlc_event_t *event, void *data) {
        auto *impl = static_cast<Impl *>(data);
        QMetaObject::invokeMethod(
            impl->owner,
            [owner = impl->owner, generation = impl->generation.load(), type = event->type] {
                owner->receive(generation, type);
            },
            Qt::QueuedConnection);
    }

    // The library's picture output, on a thread of its own, one call at a time.

    static unsigned beginPictures(void **opaque, char *chroma, unsigned *width, unsigned *height,
                                  unsigned *pitches, unsigned *lines) {
        const auto *impl = static_cast<const Impl *>(*opaque);
        // The library offers the size of its own memory, which may be larger than the picture.
        const QSize offered(static_cast<int>(*width), static_cast<int>(*height));
        const QSize known = impl->media->pictureFormat().pixels;
        const QSize pixels = known.isEmpty() ? offered : known.boundedTo(offered);
        const QSize memory = impl->pictures->begin(pixels);
        std::memcpy(chroma, "RV32", 4);
        *width = static_cast<unsigned>(pixels.width());
        *height = static_cast<unsigned>(pixels.height());
        *pitches = static_cast<unsigned>(memory.width());
        *lines = static_cast<unsigned>(memory.height());
        return memory.isEmpty() ? 0 : 1;
    }
    static void *lockPicture(void *opaque, void **planes) {
        *planes = static_cast<Impl *>(opaque)->pictures->writable();
        return nullptr;
    }
    static void displayPicture(void *opaque, void *) {
        const auto *impl = static_cast<const Impl *>(opaque);
        impl->pictures->publish(impl->media->pictureFormat().shape); // known some pictures late
    }
};

namespace {

constexpr std::array observedEvents = {
    libvlc_MediaPlayerOpening,     libvlc_MediaPlayerBuffering,        libvlc_MediaPlayerPlaying,
    libvlc_MediaPlayerPaused,      libvlc_MediaPlayerStopped,          libvlc_MediaPlayerEndReached,
    libvlc_MediaPlayerTimeChanged, libvlc_MediaPlayerEncounteredError, libvlc_MediaPlayerAudioVolume,
};

/// The state that an event of libVLC stands for.
VLCMediaPlayerState stateOfEvent(int type) {
    switch (type) {
    case libvlc_MediaPlayerOpening:
        return VLCMediaPlayerStateOpening;
    case libvlc_MediaPlayerBuffering:
        return VLCMediaPlayerStateBuffering;
    case libvlc_MediaPlayerPlaying:
        return VLCMediaPlayerStatePlaying;
    case libvlc_MediaPlayerPaused:
        return VLCMediaPlayerStatePaused;
    case libvlc_MediaPlayerEndReached:
        return VLCMediaPlayerStateEnded;
    case libvlc_MediaPlayerEncounteredError:
        return VLCMediaPlayerStateError;
    default:
        return VLCMediaPlayerStateStopped;
    }
}

// The library lists "no track" as one of the tracks, under this identifier.
constexpr int noTrack = -1;
constexpr int maximumVolume = 200;
// The library reports the time about four times a second.
constexpr int timesOfNothingAllowed = 6;
// Long enough that its time is reported before it ends.
constexpr qint64 longFilmMs = 2000;

template<typename Visitor>
void forEachAudioTrack(libvlc_media_player_t *player, Visitor visit) {
    const VLCHandle<libvlc_track_description_t> tracks(libvlc_audio_get_track_description(player));
    for (const libvlc_track_description_t *track = tracks.get(); track; track = track->p_next) {
        if (track->i_id != noTrack)
            visit(*track);
    }
}

} // namespace

VLCMediaPlayer::VLCMediaPlayer(const VLCInstance &instance, const VLCVideoView *view, QObject *parent)
    : QObject(parent)
    , _instance(instance)
    , _view(view)
    , _impl(std::make_unique<Impl>()) {
    _impl->owner = this;
    openPlayer();
}

VLCMediaPlayer::~VLCMediaPlayer() {
    if (_impl->player)
        libvlc_media_player_stop(_impl->player.get());
}

void VLCMediaPlayer::openPlayer() {
    _impl->subscriptions.clear();
    _impl->player.reset(_instance.isUsable() ? libvlc_media_player_new(_instance.handle()) : nullptr);
    libvlc_media_player_t *player = _impl->player.get();
    if (!player)
        return;
    directPicture();
    // Mouse and keys belong to the page that lies over the picture.
    libvlc_video_set_mouse_input(player, 0);
    libvlc_video_set_key_input(player, 0);
    libvlc_event_manager_t *manager = libvlc_media_player_event_manager(player);
    for (const auto type : observedEvents)
        _impl->subscriptions.emplace_back(manager, type, &Impl::onEvent, _impl.get());
}

void VLCMediaPlayer::directPicture() const {
    libvlc_media_player_t *player = _impl->player.get();
    if (_impl->pictures) {
        libvlc_video_set_callbacks(player, &Impl::lockPicture, nullptr, &Impl::displayPicture, _impl.get());
        libvlc_video_set_format_callbacks(player, &Impl::beginPictures, nullptr);
    } else if (_view) {
        libvlc_media_player_set_xwindow(player, static_cast<uint32_t>(_view->nativeWindow()));
    }
}

void VLCMediaPlayer::setPictureBuffer(VLCPictureBuffer *pictures) {
    if (pictures == _impl->pictures)
        return;
    setMedia(nullptr);
    _impl->pictures = pictures;
    openPlayer(); // the library's player keeps to the output that it was given first
    applySound();
}

void VLCMediaPlayer::setMedia(std::unique_ptr<VLCMedia> media) {
    stop();
    if (_impl->player)
        libvlc_media_player_set_media(_impl->player.get(), media ? media->handle() : nullptr);
    _impl->media = media.get();
    _media = std::move(media);
}

VLCMedia *VLCMediaPlayer::media() const {
    return _media.get();
}

void VLCMediaPlayer::play() {
    if (!_media || !_impl->player)
        return;
    if (isOver()) {
        restartFrom({});
        return;
    }
    _isStarted = true;
    libvlc_media_player_play(_impl->player.get());
}

bool VLCMediaPlayer::isOver() const {
    if (_hasEnded || !_isStarted || _state == VLCMediaPlayerStateError)
        return _hasEnded;
    const libvlc_state_t state = libvlc_media_player_get_state(_impl->player.get());
    return state == libvlc_Ended || state == libvlc_Stopped;
}

void VLCMediaPlayer::restartFrom(const VLCTime &time) {
    // Giving the media again ends what is over but keeps the sound output with its volume, which a stop does
    // not.
    libvlc_media_player_set_media(_impl->player.get(), _media->handle());
    ++_impl->generation;
    _state = VLCMediaPlayerStateStopped;
    _hasEnded = false;
    _isSoundLost = true; // unless the library was quick enough to keep it
    _timeToSeek = time;
    libvlc_media_player_play(_impl->player.get());
}

void VLCMediaPlayer::pause() {
    if (_impl->player)
        libvlc_media_player_set_pause(_impl->player.get(), 1);
}

void VLCMediaPlayer::stop() {
    if (_impl->player && _isStarted) {
        libvlc_media_player_stop(_impl->player.get());
        // A player that has been stopped has no sound output and takes no volume before it plays again; a new
        // one does.
        openPlayer();
        if (_impl->player && _media)
            libvlc_media_player_set_media(_impl->player.get(), _media->handle());
        _isMuted = false;
        applySound();
    }
    _isStarted = false;
    _hasEnded = false;
    _hasPlayedTrack = false;
    _timesOfNothing = 0;
    _isSoundLost = false;
    ++_impl->generation;
    _state = VLCMediaPlayerStateStopped;
    _timeToSeek = {};
}

bool VLCMediaPlayer::isPlaying() const {
    return _impl->player && libvlc_media_player_is_playing(_impl->player.get()) != 0;
}

VLCMediaPlayerState VLCMediaPlayer::state() const {
    return _state;
}

VLCTime VLCMediaPlayer::time() const {
    const libvlc_time_t time = _impl->player ? libvlc_media_player_get_time(_impl->player.get()) : -1;
    return VLCTime::timeWithInt(qMax<libvlc_time_t>(time, 0));
}

void VLCMediaPlayer::setTime(const VLCTime &time) {
    if (!_media || !_impl->player)
        return;
    if (isOver())
        restartFrom(time);
    else
        libvlc_media_player_set_time(_impl->player.get(), time.intValue());
}

int VLCMediaPlayer::volume() const {
    return _impl->player ? libvlc_audio_get_volume(_impl->player.get()) : -1;
}

void VLCMediaPlayer::setVolume(int volume) {
    _volume = std::clamp(volume, 0, maximumVolume);
    applySound();
}

void VLCMediaPlayer::setMute(bool isMuted) {
    _isMuted = isMuted;
    applySound();
}

void VLCMediaPlayer::applySound() {
    if (!_impl->player)
        return;
    if (_volume)
        libvlc_audio_set_volume(_impl->player.get(), *_volume);
    libvlc_audio_set_mute(_impl->player.get(), _isMuted ? 1 : 0);
}

float VLCMediaPlayer::rate() const {
    return _impl->player ? libvlc_media_player_get_rate(_impl->player.get()) : 1.0F;
}

void VLCMediaPlayer::setRate(float rate) {
    if (_impl->player)
        libvlc_media_player_set_rate(_impl->player.get(), rate);
}

QStringList VLCMediaPlayer::audioTrackNames() const {
    QStringList names;
    if (_impl->player)
        forEachAudioTrack(_impl->player.get(), [&](const libvlc_track_description_t &track) {
            names.append(QString::fromUtf8(track.psz_name));
        });
    return names;
}

QList<int> VLCMediaPlayer::audioTrackIndexes() const {
    QList<int> indexes;
    if (_impl->player)
        forEachAudioTrack(_impl->player.get(),
                          [&](const libvlc_track_description_t &track) { indexes.append(track.i_id); });
    return indexes;
}

int VLCMediaPlayer::currentAudioTrackIndex() const {
    return _impl->player ? libvlc_audio_get_track(_impl->player.get()) : noTrack;
}

void VLCMediaPlayer::setCurrentAudioTrackIndex(int index) {
    if (!_impl->player || index == currentAudioTrackIndex())
        return;
    if (libvlc_audio_set_track(_impl->player.get(), index) == 0)
        _isSoundLost = true;
}

int VLCMediaPlayer::currentVideoSubTitleIndex() const {
    return _impl->player ? libvlc_video_get_spu(_impl->player.get()) : noTrack;
}

void VLCMediaPlayer::setCurrentVideoSubTitleIndex(int index) {
    if (_impl->player)
        libvlc_video_set_spu(_impl->player.get(), index);
}

void VLCMediaPlayer::receive(unsigned generation, int eventType) {
    if (generation != _impl->generation.load())
        return;
    if (eventType == libvlc_MediaPlayerTimeChanged) {
        receiveTime();
        return;
    }
    if (eventType == libvlc_MediaPlayerAudioVolume) {
        if (std::exchange(_isSoundLost, false))
            applySound();
        return;
    }
    _state = stateOfEvent(eventType);
    // A folder comes to its end without a complaint, and without anything to see or hear. What has been
    // decoded is known for certain only at the stop after the end.
    const bool hasNothing = _state == VLCMediaPlayerStateEnded && !_media->hasPictureOrSound();
    // A film whose server does not give what the library asks for ends at once, too, though it has a length.
    const bool neverBegan = _state == VLCMediaPlayerStateStopped && _hasEnded && !_hasPlayedTrack &&
                            (!_media->hasDecodedAnything() || _media->length().intValue() >= longFilmMs);
    if (hasNothing || neverBegan) {
        _state = VLCMediaPlayerStateError;
        _hasEnded = false;
    }
    _hasEnded = _hasEnded || _state == VLCMediaPlayerStateEnded;
    if (_state == VLCMediaPlayerStatePlaying && _timeToSeek.numberValue())
        libvlc_media_player_set_time(_impl->player.get(), std::exchange(_timeToSeek, {}).intValue());
    Q_EMIT stateChanged();
}

void VLCMediaPlayer::receiveTime() {
    _hasPlayedTrack = _hasPlayedTrack || libvlc_video_get_track(_impl->player.get()) != noTrack ||
                      libvlc_audio_get_track(_impl->player.get()) != noTrack;
    // A text is a film to the library, in a format that it then cannot decode: its time runs with nothing to
    // see or hear. A film that is slow to come has no time yet.
    if (!_hasPlayedTrack && ++_timesOfNothing >= timesOfNothingAllowed) {
        stop();
        _state = VLCMediaPlayerStateError;
        Q_EMIT stateChanged();
        return;
    }
    Q_EMIT timeChanged();
}

} // namespace murvo
