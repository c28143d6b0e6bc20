// SPDX-License-Identifier: GPL-3.0-or-later
#include "Sources/SubtitleLookup.h"

#include "Sources/FilmPaths.h"
#include "Sources/Sidecars.h"
#include "Subtitles/CueReader.h"

#include <QSet>

namespace murvo::service {

LookupAnswer SubtitleLookup::lookUp(quint64 movieHash, quint64 sizeBytes, const QString &fileName) {
    const QString path = _paths.find(movieHash, sizeBytes, fileName);
    const QString name = path.isEmpty() ? fileName : path.section(u'/', -1);
    LookupAnswer answer{_films.findOrAdd({movieHash, sizeBytes, path, name}), {}};

    QSet<qint32> besideFilm;
    for (const Sidecar &sidecar : findSidecars(answer.film.path)) {
        if (isPictureSubtitle(sidecar.content))
            continue; // of no use to the page, which says so when it lists the tracks
        Subtitle described;
        described.fileName = sidecar.fileName;
        described.language = sidecar.told.language;
        described.forced = sidecar.told.forced;
        described.hearingImpaired = sidecar.told.hearingImpaired;
        const Subtitle subtitle = _subtitles.findOrAdd(answer.film.id, described);
        besideFilm.insert(subtitle.id);
        const bool changed = subtitle.contentSha256 != SubtitleTable::sha256(sidecar.content);
        answer.offers.append({subtitle, changed});
    }
    for (const Subtitle &subtitle : _subtitles.ofFilm(answer.film.id)) {
        if (subtitle.stored() && !besideFilm.contains(subtitle.id))
            answer.offers.append({subtitle, false});
    }
    return answer;
}

} // namespace murvo::service
