// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Subtitles/Cues.h"

#include <QList>

#include <optional>

namespace murvo::service {

/// A place from which a track lies differently: where an advertisement or a scene is in one of the two only.
struct Cut {
    qint64 atMs = 0;     ///< of the track's own time
    qint64 offsetMs = 0; ///< added to what holds before the cut

    friend bool operator==(const Cut &, const Cut &) = default;
};

/// How a track's own times become the film's: filmMs = t * rateNumerator / rateDenominator + offsetMs, and
/// cut->offsetMs more from cut->atMs on. Made without arguments it changes nothing. A value; any thread.
struct Timing {
    qint64 offsetMs = 0;
    qint32 rateNumerator = 1; ///< both parts above 0
    qint32 rateDenominator = 1;
    std::optional<Cut> cut;

    friend bool operator==(const Timing &, const Timing &) = default;
};

/// May be negative: before the film.
[[nodiscard]] qint64 filmTimeMs(qint64 trackMs, const Timing &timing);

/// The cues at the film's times, in order again. A cue moves as a whole, by where it starts; one that would
/// start before the film starts with it, and one that would end before it is left out.
[[nodiscard]] QList<Cue> retimed(QList<Cue> cues, const Timing &timing);

} // namespace murvo::service
