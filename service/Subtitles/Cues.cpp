// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/Cues.h"

#include <QSet>

#include <algorithm>

namespace murvo::service {

namespace {

// Files with a broken end time ("99:59:59,999", or an end before the start) would else stay for good or never
// show.
constexpr qint64 longestCueMs = 60'000;
constexpr qint64 guessedCueMs = 3'000;
// No film goes on for longer.
constexpr qint64 latestStartMs = 86'400'000;

// Shadows and glows are made by the same line in several layers: a reader needs it once.
void removeRepeated(QList<Cue> &sorted) {
    QSet<QString> seenAtStart;
    qint64 startMs = -1;
    sorted.removeIf([&seenAtStart, &startMs](const Cue &cue) {
        if (cue.startMs != startMs) {
            seenAtStart.clear();
            startMs = cue.startMs;
        }
        const QString key = QString::number(cue.endMs) + u'\n' + cue.lines.join(u'\n');
        if (seenAtStart.contains(key))
            return true;
        seenAtStart.insert(key);
        return false;
    });
}

} // namespace

QList<Cue> inOrder(QList<Cue> cues) {
    cues.removeIf([](const Cue &cue) {
        return cue.lines.isEmpty() || (cue.startMs < 0 && cue.endMs <= 0) || cue.startMs > latestStartMs;
    });
    for (Cue &cue : cues)
        cue.startMs = std::max<qint64>(cue.startMs, 0);
    std::stable_sort(cues.begin(), cues.end(),
                     [](const Cue &a, const Cue &b) { return a.startMs < b.startMs; });
    auto next = cues.cbegin(); // the first cue that starts later
    for (Cue &cue : cues) {
        while (next != cues.cend() && next->startMs <= cue.startMs)
            ++next;
        if (cue.endMs <= cue.startMs) {
            cue.endMs = cue.startMs + guessedCueMs;
            if (next != cues.cend())
                cue.endMs = std::min(cue.endMs, next->startMs);
        }
        cue.endMs = std::min(cue.endMs, cue.startMs + longestCueMs);
    }
    removeRepeated(cues);
    return cues;
}

} // namespace murvo::service
