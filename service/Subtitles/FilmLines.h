// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/ChoiceTable.h"
#include "Store/FilmTable.h"
#include "Store/SubtitleTable.h"
#include "Subtitles/CueReader.h"

#include <QList>

#include <optional>

namespace murvo::service {

class InsideSubtitles;

/// A subtitle with its lines, or with the reason why it has none.
struct ReadTrack {
    Subtitle subtitle;
    CueReading reading;
};

/// What the page draws, and what it could draw.
struct FilmLinesAnswer {
    std::optional<ReadTrack> learned; ///< readable
    std::optional<ReadTrack> native;  ///< readable, and another one
    QList<Subtitle> subtitles;        ///< all that there are of the film, also those that cannot be used
};

/// Turns the subtitles of a film into lines: the stored ones, and those that are being taken out of the film.
///
/// Any thread; borrows everything. It reads stored contents, and the film's own headers where a subtitle
/// counts in frames.
class FilmLines {
  public:
    FilmLines(SubtitleTable &subtitles, ChoiceTable &choices, const InsideSubtitles &inside)
        : _subtitles(subtitles)
        , _choices(choices)
        , _inside(inside) {}

    [[nodiscard]] FilmLinesAnswer read(const Film &film, const QString &nativeLanguage);

    /// One subtitle; a problem when it is not stored yet or cannot be read.
    [[nodiscard]] ReadTrack readOne(const Film &film, const Subtitle &subtitle);

    /// The lines of a content that the subtitle has in the store.
    [[nodiscard]] static CueReading readStored(const Film &film, const Subtitle &subtitle,
                                               const QByteArray &content);

    /// Keeps a content for a subtitle, with what is found in it; false when there is no such subtitle.
    bool store(const Subtitle &subtitle, const QByteArray &content);

    /// Reads the subtitle by another encoding from now on; empty: by the one that is found.
    void setEncoding(const Subtitle &subtitle, const QString &encoding);

  private:
    [[nodiscard]] QList<Subtitle> subtitlesOf(const Film &film);
    [[nodiscard]] std::optional<ReadTrack> line(const Film &film, Line line, const FilmLinesAnswer &answer,
                                                const QList<Subtitle> &candidates);

    SubtitleTable &_subtitles;
    ChoiceTable &_choices;
    const InsideSubtitles &_inside;
};

} // namespace murvo::service
