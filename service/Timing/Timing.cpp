// SPDX-License-Identifier: GPL-3.0-or-later
#include "Timing/Timing.h"

#include <algorithm>
#include <utility>

namespace murvo::service {

namespace {

// Rounded, not cut off: two neighbouring cues keep their distance to a millisecond on both sides of zero.
qint64 scaled(qint64 trackMs, const Timing &timing) {
    const qint64 product = trackMs * timing.rateNumerator;
    const qint64 half = timing.rateDenominator / 2;
    return (product < 0 ? product - half : product + half) / timing.rateDenominator;
}

} // namespace

qint64 filmTimeMs(qint64 trackMs, const Timing &timing) {
    const bool isBehindCut = timing.cut && trackMs >= timing.cut->atMs;
    return scaled(trackMs, timing) + timing.offsetMs + (isBehindCut ? timing.cut->offsetMs : 0);
}

QList<Cue> retimed(QList<Cue> cues, const Timing &timing) {
    for (Cue &cue : cues) {
        const qint64 startMs = filmTimeMs(cue.startMs, timing);
        cue.endMs = startMs + scaled(cue.endMs, timing) - scaled(cue.startMs, timing);
        cue.startMs = startMs;
    }
    cues.removeIf([](const Cue &cue) { return cue.endMs <= 0; });
    for (Cue &cue : cues)
        cue.startMs = std::max<qint64>(cue.startMs, 0);
    return inOrder(std::move(cues));
}

} // namespace murvo::service
