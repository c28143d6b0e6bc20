// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/LineTable.h"
#include "Timing/Timing.h"
#include "Vocabulary/FilmTracks.h"

#include <QHash>
#include <QString>

namespace murvo::service {

class ChoiceTable;
class FilmTable;
class SettingsTable;
class SubtitleTable;
class TimingTable;

/// What lines are read from. All borrowed.
struct LineParts {
    FilmTable &films;
    SubtitleTable &subtitles;
    ChoiceTable &choices;
    TimingTable &timings;
    SettingsTable &settings;
    LineTable &lines;
};

/// A line at the film's times, with the one that is shown beneath it.
struct ShownLine {
    qint64 id = 0;
    qint32 filmId = 0;
    QString filmName;
    qint32 subtitleId = 0;
    qint64 startMs = 0; ///< of the film, as the subtitle lies now
    qint64 endMs = 0;
    QString text;        ///< its text lines parted by "\n"
    QString translation; ///< empty when the film has none there
    QString language;    ///< of the text, as a code; empty while unknown
};

/// Tells where in their films stored lines are, and what is shown with them. Made for one request: it
/// remembers what it has read of each film. One thread; every call may throw SQLite::Exception.
class LineReader {
  public:
    explicit LineReader(const LineParts &parts);

    [[nodiscard]] const FilmTracks &tracks(qint32 filmId);

    /// In the learner's language for an English line, else in English.
    [[nodiscard]] ShownLine shown(const StoredLine &line, qint32 filmId);

  private:
    [[nodiscard]] const Timing &timing(qint32 subtitleId);
    [[nodiscard]] const QString &language(qint32 subtitleId);
    [[nodiscard]] QString beneath(const ShownLine &line, qint32 otherSubtitleId);

    LineParts _parts;
    QString _nativeLanguage;
    QHash<qint32, FilmTracks> _tracks;
    QHash<qint32, Timing> _timings;
    QHash<qint32, QString> _filmNames;
    QHash<qint32, QString> _languages; // of subtitles
};

} // namespace murvo::service
