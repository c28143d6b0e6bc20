// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Sources/Decoding.h"
#include "Sources/FilmInput.h"

#include <QByteArray>
#include <QString>

#include <atomic>
#include <chrono>
#include <vector>

namespace murvo::service {

/// Cuts pictures and sounds out of one film file, for as many lines as there are of it.
///
/// It goes to the place and decodes from the key picture before it, never the whole film, and each cut has a
/// time limit. One thread; the flag may be set by any other and ends what runs. Times are the film's, in ms.
class FilmClips {
  public:
    FilmClips(const QString &filmPath, const std::atomic<bool> &isCancelled);
    FilmClips(const FilmClips &) = delete;
    FilmClips &operator=(const FilmClips &) = delete;

    /// A JPEG of the picture at that time, 480 wide at most. Where getting there takes too long, of one
    /// shortly before. Empty for a film without pictures and a time that lies behind its end.
    [[nodiscard]] QByteArray picture(qint64 atMs);

    /// The same, or, where that one is black, one of some seconds before or after it that is not.
    [[nodiscard]] QByteArray lightPicture(qint64 atMs);

    /// An MP3 of what is heard from start to end, 15 s at most; of the tracks in English before others, of
    /// the default one before others. Empty when nothing was found there.
    [[nodiscard]] QByteArray sound(qint64 startMs, qint64 endMs);

  private:
    class Voice;

    /// Null for none. Within the time that is allowed.
    [[nodiscard]] Frame frameAt(qint64 atMs);
    void allow(std::chrono::milliseconds time);
    [[nodiscard]] bool isLate() const;
    [[nodiscard]] bool goTo(const AVStream &stream, qint64 ms) const;
    /// Hands each frame of the stream on until take(frame) is false or it is late.
    template<typename Take>
    void decode(const AVStream &stream, AVCodecContext &decoder, Take take);
    [[nodiscard]] int64_t filmMs(const AVFrame &frame, const AVStream &stream) const;

    const std::atomic<bool> &_isCancelled;
    std::chrono::steady_clock::time_point _deadline; // of the cut that is being made
    FilmInput _input;
    const AVStream *_pictures = nullptr;
    const AVStream *_sounds = nullptr;
    Decoder _pictureDecoder;
    Decoder _soundDecoder;
};

} // namespace murvo::service
