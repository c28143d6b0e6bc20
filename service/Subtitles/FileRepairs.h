// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Subtitles/CueReader.h"

#include <QString>

namespace murvo::service {

// The demuxers read good files well and lose parts of others without a word: they end at the first block
// that they do not know, take a fraction of a second for ms, cut long lines in two. These functions write a
// file anew as the demuxer reads it right. Line ends are "\n" before and after. Pure functions, any thread;
// they take any text, need time in proportion to its length and keep no more than mostCuesOfFile cues.

constexpr qsizetype mostCuesOfFile = 50'000;

/// Files of blocks with "start --> end" or SubViewer's "start,end" above the text, as SubRip.
[[nodiscard]] QString repairedSubRip(const QString &text);

/// WebVTT without style, region and note blocks, and without blocks that have no good times.
[[nodiscard]] QString repairedWebVtt(const QString &text);

/// The script's events in the order of fields and the form of times that the demuxer knows.
[[nodiscard]] QString repairedAss(const QString &text);

/// MicroDVD without its header; rate becomes what the header says, if it says anything.
[[nodiscard]] QString repairedMicroDvd(const QString &text, FrameRate &rate);

/// The whole lines of a file that has a cue in each, none longer than the demuxers' buffers.
[[nodiscard]] QString shortLines(const QString &text);

} // namespace murvo::service
