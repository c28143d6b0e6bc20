// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/FilmTable.h"
#include "Store/SubtitleTable.h"

#include <QList>

namespace murvo::service {

class FilmPaths;
class InsideSubtitles;
struct Sidecar;

/// One line of the lookup's answer.
struct SubtitleOffer {
    Subtitle subtitle;
    bool mustBeDownloaded = false; ///< the store does not hold what now lies beside the film
};

struct LookupAnswer {
    Film film;
    QList<SubtitleOffer> offers;
};

/// Finds the subtitles of a film: those beside it and those that the store kept from earlier. Those inside it
/// it lets be taken out, and does not wait for them.
///
/// Any thread; borrows everything. It reads the disk, and enters new films and files into the store, but no
/// content: that comes by the player's upload.
class SubtitleLookup {
  public:
    SubtitleLookup(FilmTable &films, SubtitleTable &subtitles, const FilmPaths &paths,
                   InsideSubtitles &inside)
        : _films(films)
        , _subtitles(subtitles)
        , _paths(paths)
        , _inside(inside) {}

    [[nodiscard]] LookupAnswer lookUp(quint64 movieHash, quint64 sizeBytes, const QString &fileName);

  private:
    void offer(const Subtitle &subtitle, const Sidecar &sidecar, LookupAnswer &answer);

    FilmTable &_films;
    SubtitleTable &_subtitles;
    const FilmPaths &_paths;
    InsideSubtitles &_inside;
};

} // namespace murvo::service
