// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "NewestOnly.h"
#include "Store/FilmTable.h"
#include "Store/SubtitleTable.h"
#include "Subtitles/Cues.h"

#include <QHash>
#include <QList>

#include <memory>
#include <mutex>
#include <optional>

namespace murvo::service {

class ChangeCounts;
struct InsideTrack;

/// How far the reading of a film's own tracks has come.
struct InsideProgress {
    bool isRunning = false;
    int percent = 0; ///< of the file, 0 to 100
};

/// Takes the text tracks out of a film and puts them into the store, on a thread of its own: one film at a
/// time, the newest wins. While it reads, the lines are to be had as far as they have come.
///
/// Any thread; borrows the tables and the counts, in which it announces what is new under the film's id.
class InsideSubtitles {
  public:
    InsideSubtitles(FilmTable &films, SubtitleTable &subtitles, ChangeCounts &changes)
        : _films(films)
        , _subtitles(subtitles)
        , _changes(changes) {}

    /// Begins to read the film unless its tracks were read before or are being read. Returns at once; nothing
    /// happens for a film that does not lie on this machine.
    void begin(const Film &film);

    /// Gives up what is being read; nothing more of it is kept.
    void stop();

    [[nodiscard]] InsideProgress progress(qint32 filmId) const;

    [[nodiscard]] bool isReading(qint32 subtitleId) const;

    /// The lines of a track that is being read, as far as they have come, in order; none for any other.
    [[nodiscard]] std::optional<QList<Cue>> linesSoFar(qint32 subtitleId) const;

  private:
    struct Track {
        qint32 subtitleId = 0;
        bool isText = false;
        QList<Cue> cues;
    };
    /// One film's reading. Shared by the thread that reads, which goes on with its own for a moment after
    /// another has taken its place.
    struct Reading {
        Film film;
        int percent = 0;
        QList<Track> tracks;
        qsizetype cues = 0; // of all tracks
        qsizetype characters = 0;
    };

    /// Null when it is not a text track that is being read. Under the lock.
    [[nodiscard]] const Track *trackOf(qint32 subtitleId) const;
    void read(Reading &reading, const QString &file, const std::atomic<bool> &isCancelled);
    void found(Reading &reading, const QList<InsideTrack> &tracks);
    void add(Reading &reading, qsizetype track, Cue cue);
    void store(const Reading &reading);

    FilmTable &_films;
    SubtitleTable &_subtitles;
    ChangeCounts &_changes;
    mutable std::mutex _mutex;         // guards _reading and what it holds
    std::shared_ptr<Reading> _reading; // null when no film is read
    NewestOnly _worker;                // last: its thread uses all of these
};

} // namespace murvo::service
