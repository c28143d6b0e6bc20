// SPDX-License-Identifier: GPL-3.0-or-later
#include "Sources/SubtitleLookup.h"

#include "Sources/FilmPaths.h"
#include "Sources/InsideSubtitles.h"
#include "Sources/Sidecars.h"
#include "Subtitles/Findings.h"

namespace murvo::service {

namespace {

Subtitle describe(const Sidecar &sidecar) {
    Subtitle subtitle;
    subtitle.place = sidecar.place;
    subtitle.fileName = sidecar.fileName();
    takeName(sidecar.told, subtitle);
    return subtitle;
}

} // namespace

LookupAnswer SubtitleLookup::lookUp(quint64 movieHash, quint64 sizeBytes, const QString &fileName) {
    const QString path = _paths.find(movieHash, sizeBytes, fileName);
    const QString name = path.isEmpty() ? fileName : path.section(u'/', -1);
    LookupAnswer answer{_films.findOrAdd({movieHash, sizeBytes, path, name}), {}};
    _inside.begin(answer.film);

    const QList<Sidecar> sidecars = findSidecars(answer.film.path);
    QList<Subtitle> described;
    for (const Sidecar &sidecar : sidecars)
        described.append(describe(sidecar));
    const QList<Subtitle> besideFilm = _subtitles.findOrAdd(answer.film.id, described);
    QList<qint32> ids;
    for (qsizetype i = 0; i < besideFilm.size(); ++i) {
        ids.append(besideFilm[i].id);
        offer(besideFilm[i], sidecars[i], answer);
    }
    _subtitles.onlyTheseAreThere(answer.film.id, SubtitleSource::Beside, ids);
    for (const Subtitle &subtitle : _subtitles.ofFilm(answer.film.id)) {
        if (subtitle.stored() && !ids.contains(subtitle.id))
            answer.offers.append({subtitle, false});
    }
    return answer;
}

void SubtitleLookup::offer(const Subtitle &subtitle, const Sidecar &sidecar, LookupAnswer &answer) {
    if (sidecar.problem == CueProblem::None) {
        // What could not be taken last time is looked at anew.
        const bool isNew = subtitle.contentSha256 != SubtitleTable::sha256(sidecar.content);
        answer.offers.append({subtitle, isNew || subtitle.cueCount == 0});
        return;
    }
    // Of no use to the page, which says so when it lists the tracks.
    const QString problem = codeOf(sidecar.problem);
    if (subtitle.problem != problem)
        _subtitles.setFindings(subtitle.id, {0, QString(), problem});
}

} // namespace murvo::service
