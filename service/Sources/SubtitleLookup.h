// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/FilmTable.h"
#include "Store/SubtitleTable.h"

#include <QList>

namespace murvo::service {

class FilmPaths;

/// One line of the lookup's answer.
struct SubtitleOffer {
    Subtitle subtitle;
    bool mustBeDownloaded = false; ///< the store does not hold what now lies beside the film
};

struct LookupAnswer {
    Film film;
    QList<SubtitleOffer> offers;
};

/// Finds the subtitles of a film: those beside it and those that the store kept from earlier.
///
/// Any thread; borrows the tables and the paths. It reads the disk, and enters new films and files into the
/// store, but no content: that comes by the player's upload.
class SubtitleLookup {
  public:
    SubtitleLookup(FilmTable &films, SubtitleTable &subtitles, const FilmPaths &paths)
        : _films(films)
        , _subtitles(subtitles)
        , _paths(paths) {}

    [[nodiscard]] LookupAnswer lookUp(quint64 movieHash, quint64 sizeBytes, const QString &fileName);

  private:
    FilmTable &_films;
    SubtitleTable &_subtitles;
    const FilmPaths &_paths;
};

} // namespace murvo::service
