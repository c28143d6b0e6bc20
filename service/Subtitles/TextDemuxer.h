// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Subtitles/CueReader.h"
#include "Subtitles/Cues.h"

#include <QByteArray>

namespace murvo::service {

/// The cues of a file in memory as libavformat's demuxer of that name reads them, in its order. text is
/// UTF-8; rate is for a format that counts in frames, 0 where it is not known. Empty when the demuxer refuses
/// the text. Any thread; reads no disk and no network.
[[nodiscard]] QList<Cue> demuxedCues(const QByteArray &text, const char *demuxer, FrameRate rate);

} // namespace murvo::service
