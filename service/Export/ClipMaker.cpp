// SPDX-License-Identifier: GPL-3.0-or-later
#include "Export/ClipMaker.h"

#include "Export/FilmClips.h"
#include "Sources/FilmFile.h"

namespace murvo::service {

namespace {

// Voices begin a little before their line shows and end after it.
constexpr qint64 airBeforeMs = 250;
constexpr qint64 airBehindMs = 350;

} // namespace

ClipMaker::ClipMaker(const std::atomic<bool> &isCancelled)
    : _isCancelled(isCancelled) {}

ClipMaker::~ClipMaker() = default;

WordClip ClipMaker::clip(const WordCard &card) {
    if (card.endMs <= card.startMs || !liesThere(card.filmPath, card.filmSizeBytes))
        return {};
    if (card.filmPath != _filmPath) {
        _film = std::make_unique<FilmClips>(card.filmPath, _isCancelled);
        _filmPath = card.filmPath;
        _startMs = _endMs = -1;
    }
    if (card.startMs != _startMs || card.endMs != _endMs) {
        _startMs = card.startMs;
        _endMs = card.endMs;
        _last = {_film->picture((_startMs + _endMs) / 2),
                 _film->sound(_startMs - airBeforeMs, _endMs + airBehindMs)};
    }
    return _last;
}

} // namespace murvo::service
