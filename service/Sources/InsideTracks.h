// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Subtitles/Cues.h"

#include <QList>
#include <QString>

#include <atomic>
#include <functional>

namespace murvo::service {

/// One subtitle track of a film.
struct InsideTrack {
    int streamIndex = 0;
    QString language; ///< ISO 639-2/T, empty when the film tells none
    QString title;    ///< as the film tells it, often empty
    bool forced = false;
    bool hearingImpaired = false;
    bool isText = false; ///< false: pictures, or a kind of text that cannot be read
    bool isPictures = false;
};

/// What reading tells, on the thread that reads; track is a place in the list that was found.
struct InsideTrackEvents {
    std::function<void(const QList<InsideTrack> &tracks)> found;
    std::function<void(qsizetype track, Cue cue)> read;
    std::function<void(double share)> progressed; ///< 0 to 1, not more often than some 20 times a second
};

/// Reads all text tracks of the film in one pass over the file, from its beginning to its end. Returns true
/// when it came there; false when the film cannot be read (on) or the reading was cancelled. Blocks for as
/// long as the disk takes; holds no more than a packet in memory. Any thread.
[[nodiscard]] bool readInsideTracks(const QString &filmPath, const InsideTrackEvents &events,
                                    const std::atomic<bool> &isCancelled);

} // namespace murvo::service
