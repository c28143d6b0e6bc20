// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "NewestOnly.h"
#include "Store/FilmTable.h"
#include "Store/SubtitleTable.h"
#include "Timing/Alignment.h"

#include <memory>
#include <mutex>
#include <optional>

namespace murvo::service {

class FilmLines;
class TimingTable;

/// How the fitting of one subtitle to its film stands.
struct SyncState {
    enum class Stage { None, Running, Done };

    Stage stage = Stage::None;
    int percent = 0; ///< of the sound, while it is listened to
    std::optional<Alignment>
        alignment;               ///< of a finished one; none: the film and the subtitle tell too little
    bool isAgainstTrack = false; ///< found by the film's own track, not by its sound
};

/// Finds how a subtitle must be moved to fit its film: by a track of the film itself, which is known to fit,
/// else by where there is speech in its sound. One at a time, on a thread of its own; the newest wins.
///
/// Any thread; borrows everything. It changes no timing: whoever asked decides.
class TrackSync {
  public:
    TrackSync(SubtitleTable &subtitles, TimingTable &timings, FilmLines &lines)
        : _subtitles(subtitles)
        , _timings(timings)
        , _lines(lines) {}

    void begin(const Film &film, const Subtitle &subtitle);
    void cancel(qint32 subtitleId);
    /// Ends what runs, and returns when it has ended.
    void stop();

    /// None for a subtitle whose fitting was not the last that was begun, or was cancelled.
    [[nodiscard]] SyncState state(qint32 subtitleId) const;

  private:
    struct Job {
        Film film;
        Subtitle subtitle;
        SyncState state;
    };

    void run(Job &job, const std::atomic<bool> &isCancelled);
    [[nodiscard]] std::optional<Alignment> alignToOwnTrack(const Job &job, const QList<Cue> &cues,
                                                           const std::atomic<bool> &isCancelled);
    [[nodiscard]] std::optional<Alignment> alignToSound(Job &job, const QList<Cue> &cues,
                                                        const std::atomic<bool> &isCancelled);

    SubtitleTable &_subtitles;
    TimingTable &_timings;
    FilmLines &_lines;
    mutable std::mutex _mutex; // guards _job and the state in it
    std::shared_ptr<Job> _job; // null when none was begun, or it was cancelled
    NewestOnly _worker;        // last: its thread uses all of these
};

} // namespace murvo::service
