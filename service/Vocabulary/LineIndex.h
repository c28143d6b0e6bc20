// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "NewestOnly.h"

#include <QtGlobal>

#include <atomic>
#include <mutex>

namespace murvo::service {

class ChangeCounts;
class Lexicon;
class FilmLines;
class FilmTable;
class LineTable;
class SubtitleTable;

/// Keeps the lines and words of all stored subtitles at hand, to be searched and counted.
///
/// Its thread works through what is due at the start of the program and whenever the counts say that a
/// content has changed, and gives way to the film that plays. Whoever needs a film's lines at once has them
/// made by bringUpToDate(). Borrows everything.
class LineIndex {
  public:
    LineIndex(FilmTable &films, SubtitleTable &subtitles, LineTable &table, FilmLines &lines,
              const Lexicon &lexicon, ChangeCounts &contentChanges);
    ~LineIndex();
    LineIndex(const LineIndex &) = delete;
    LineIndex &operator=(const LineIndex &) = delete;

    /// What is due of that film, in the caller's thread. May throw SQLite::Exception.
    void bringUpToDate(qint32 filmId);

  private:
    void keepUpToDate(const std::atomic<bool> &isCancelled);
    void make(qint32 subtitleId);
    void makeIfDue(qint32 subtitleId);

    FilmTable &_films;
    SubtitleTable &_subtitles;
    LineTable &_table;
    FilmLines &_lines;
    const Lexicon &_lexicon;
    ChangeCounts &_contentChanges;
    std::mutex _making; // what one makes the other need not
    NewestOnly _worker; // last: its thread uses all of these
};

} // namespace murvo::service
