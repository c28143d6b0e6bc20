// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/Cues.h"

#include <algorithm>

namespace murvo::service {

namespace {

// Files with a broken end time ("99:59:59,999", or an end before the start) would else stay for good or never
// show.
constexpr qint64 longestCueMs = 60'000;
constexpr qint64 guessedCueMs = 3'000;

} // namespace

QList<Cue> inOrder(QList<Cue> cues) {
    cues.removeIf([](const Cue &cue) { return cue.lines.isEmpty() || cue.startMs < 0; });
    std::stable_sort(cues.begin(), cues.end(),
                     [](const Cue &a, const Cue &b) { return a.startMs < b.startMs; });
    for (qsizetype i = 0; i < cues.size(); ++i) {
        Cue &cue = cues[i];
        if (cue.endMs <= cue.startMs) {
            cue.endMs = cue.startMs + guessedCueMs;
            if (i + 1 < cues.size() && cues[i + 1].startMs > cue.startMs)
                cue.endMs = std::min(cue.endMs, cues[i + 1].startMs);
        }
        cue.endMs = std::min(cue.endMs, cue.startMs + longestCueMs);
    }
    return cues;
}

} // namespace murvo::service
