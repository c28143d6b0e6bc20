// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Media/VLCMedia.h"
#include "app/Media/VLCTime.h"

#include <QList>
#include <QObject>
#include <QStringList>

#include <memory>

namespace murvo {

class VLCInstance;
class VLCPictureBuffer;
class VLCVideoView;

enum VLCMediaPlayerState {
    VLCMediaPlayerStateStopped = 0,
    VLCMediaPlayerStateOpening = 1,
    VLCMediaPlayerStateBuffering = 2,
    VLCMediaPlayerStateEnded = 3,
    VLCMediaPlayerStateError = 4,
    VLCMediaPlayerStatePlaying = 5,
    VLCMediaPlayerStatePaused = 6,
};

/// Plays one media at a time, with its picture in a view or, without a view, sound only. Main thread only:
/// what libVLC reports on its own threads is copied, posted here, and dropped when it belongs to a media that
/// has been stopped or replaced since. Commands without a media do nothing.
class VLCMediaPlayer : public QObject {
    Q_OBJECT

  public:
    /// Both are borrowed and must outlive the player; view may be null.
    VLCMediaPlayer(const VLCInstance &instance, const VLCVideoView *view, QObject *parent = nullptr);
    ~VLCMediaPlayer() override;

    /// Gives the pictures to the buffer, or with null draws them into the view, from the next media on. The
    /// buffer is borrowed and must outlive the player or the next call.
    void setPictureBuffer(VLCPictureBuffer *pictures);

    /// Stops what plays and takes the media over; it starts with play().
    void setMedia(std::unique_ptr<VLCMedia> media);
    /// Borrowed, null without one.
    [[nodiscard]] VLCMedia *media() const;

    /// Starts, or goes on after a pause, or starts anew after the end.
    void play();
    void pause();
    /// Blocks until the media is closed. No change is reported for it afterwards; speed and mute are normal
    /// again.
    void stop();
    [[nodiscard]] bool isPlaying() const;
    [[nodiscard]] VLCMediaPlayerState state() const;

    [[nodiscard]] VLCTime time() const;
    /// After the end it starts playing from there.
    void setTime(const VLCTime &time);

    /// 0 to 200, 100 is the normal volume; -1 while there is no sound output.
    [[nodiscard]] int volume() const;
    /// May be set before the media; holds until it is set again.
    void setVolume(int volume);
    void setMute(bool isMuted);

    /// 1.0 is the normal speed.
    [[nodiscard]] float rate() const;
    void setRate(float rate);

    /// Names and identifiers of the audio tracks, in the same order.
    [[nodiscard]] QStringList audioTrackNames() const;
    [[nodiscard]] QList<int> audioTrackIndexes() const;
    [[nodiscard]] int currentAudioTrackIndex() const;
    void setCurrentAudioTrackIndex(int index);

    /// The library's own subtitle track; -1 is none.
    [[nodiscard]] int currentVideoSubTitleIndex() const;
    void setCurrentVideoSubTitleIndex(int index);

  Q_SIGNALS:
    void stateChanged();
    void timeChanged();

  private:
    struct Impl;
    void receive(unsigned generation, int eventType);
    void receiveTime();
    void openPlayer();
    void directPicture() const;
    /// Also when the library has come to the end and its report is still on the way: it takes no command
    /// then.
    [[nodiscard]] bool isOver() const;
    void restartFrom(const VLCTime &time);
    void applySound();

    const VLCInstance &_instance;
    const VLCVideoView *const _view;
    std::unique_ptr<VLCMedia> _media;
    std::unique_ptr<Impl> _impl; // after the media, so destroyed before it
    VLCMediaPlayerState _state = VLCMediaPlayerStateStopped;
    bool _isStarted = false;
    bool _hasEnded = false;       // stays after the stop that the library reports next
    bool _hasPlayedTrack = false; // a picture or sound track of this media has been in use
    int _timesOfNothing = 0;      // reports of the time before that
    std::optional<int> _volume;   // as last set
    bool _isMuted = false;
    bool _isSoundLost = false; // the sound output is being made anew, without volume and mute
    VLCTime _timeToSeek;       // where to go as soon as the restarted media plays
};

} // namespace murvo
