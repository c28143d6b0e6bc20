// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Subtitles/Cues.h"

#include <QByteArray>
#include <QString>

namespace murvo::service {

enum class CueProblem {
    None,
    PictureSubtitle, ///< drawn lines (VobSub, Blu-ray), which hold no text
    UnknownFormat,   ///< nothing that looks like a subtitle format
    NoCues,          ///< the format is known, but not one line could be read
    TooLarge,        ///< for a subtitle; not read
    Unreadable,      ///< the file cannot be opened
    LiesElsewhere    ///< a link out of the film's folder; not read
};

struct CueReading {
    QList<Cue> cues;
    CueProblem problem = CueProblem::None;
};

/// Frames a second as a fraction; 0 when not known.
struct FrameRate {
    int numerator = 0;
    int denominator = 1;
};

/// True for the beginnings of VobSub's .sub and .idx and of Blu-ray's .sup.
[[nodiscard]] bool isPictureSubtitle(const QByteArray &fileBytes);

/// True when the file's times are, or may be, numbers of frames: the film's rate is needed to read it.
[[nodiscard]] bool countsInFrames(const QByteArray &fileBytes, const QByteArray &encoding);

/// Reads a subtitle file (SubRip, WebVTT, ASS/SSA, MicroDVD, SubViewer, MPL2, SAMI, TTML) from its bytes. The
/// format is told by the content, the encoding too unless it is given; filmRate is for files that count in
/// frames and do not say how fast. Takes any bytes, and needs time in proportion to their number: the caller
/// limits it. Any thread; reads no disk and no network.
[[nodiscard]] CueReading readCues(const QByteArray &fileBytes, FrameRate filmRate,
                                  const QByteArray &encoding = {});

} // namespace murvo::service
