// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Export/WordCard.h"

#include <atomic>
#include <memory>

namespace murvo::service {

class FilmClips;

/// Makes the clips of words one after the other. It keeps the film of the last one open, and the clip, so
/// that words are best asked for film by film and in the films' order. One thread; the flag ends what runs.
class ClipMaker {
  public:
    explicit ClipMaker(const std::atomic<bool> &isCancelled);
    ~ClipMaker();
    ClipMaker(const ClipMaker &) = delete;
    ClipMaker &operator=(const ClipMaker &) = delete;

    /// Nothing where the line has no time or the film is not at hand.
    [[nodiscard]] WordClip clip(const WordCard &card);

  private:
    const std::atomic<bool> &_isCancelled;
    QString _filmPath;
    std::unique_ptr<FilmClips> _film;
    qint64 _startMs = -1; // of the last clip
    qint64 _endMs = -1;
    WordClip _last;
};

} // namespace murvo::service
