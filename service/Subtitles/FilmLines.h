// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/FilmTable.h"
#include "Store/SubtitleTable.h"
#include "Subtitles/CueReader.h"

#include <QList>

#include <optional>

namespace murvo::service {

/// A subtitle with its lines, or with the reason why it has none.
struct ReadTrack {
    Subtitle subtitle;
    CueReading reading;
};

/// What the page draws: at most one track a language, and the files that could not be used.
struct FilmLinesAnswer {
    std::optional<ReadTrack> learned;
    std::optional<ReadTrack> native;
    QList<ReadTrack> unusable;
};

/// Turns the stored subtitles of a film into lines.
///
/// Any thread; borrows the table. It reads stored contents, and the film's own headers where a subtitle
/// counts in frames.
class FilmLines {
  public:
    explicit FilmLines(SubtitleTable &subtitles)
        : _subtitles(subtitles) {}

    [[nodiscard]] FilmLinesAnswer read(const Film &film, const QString &nativeLanguage);

    /// One subtitle; a problem when it is not stored yet or cannot be read.
    [[nodiscard]] ReadTrack readOne(const Film &film, const Subtitle &subtitle);

  private:
    [[nodiscard]] std::optional<ReadTrack> firstReadable(const Film &film, const QList<Subtitle> &candidates,
                                                         FilmLinesAnswer &answer);

    SubtitleTable &_subtitles;
};

} // namespace murvo::service
