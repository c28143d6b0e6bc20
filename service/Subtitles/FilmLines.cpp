// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/FilmLines.h"

#include "Sources/FilmProbe.h"
#include "Sources/Sidecars.h"
#include "Subtitles/TrackChoice.h"

namespace murvo::service {

namespace {

bool countsInFrames(const Subtitle &subtitle) {
    return subtitle.fileName.endsWith(QLatin1String(".sub"), Qt::CaseInsensitive) ||
           subtitle.fileName.endsWith(QLatin1String(".ttml"), Qt::CaseInsensitive) ||
           subtitle.fileName.endsWith(QLatin1String(".dfxp"), Qt::CaseInsensitive);
}

FrameRate frameRateOf(const Film &film) {
    const auto facts = probeFilm(film.path);
    return facts ? FrameRate{facts->frameRateNumerator, facts->frameRateDenominator} : FrameRate{};
}

QList<Subtitle> storedOnly(QList<Subtitle> subtitles) {
    subtitles.removeIf([](const Subtitle &subtitle) { return !subtitle.stored(); });
    return subtitles;
}

// Picture subtitles are never offered for download, so that only the folder itself knows of them.
QList<ReadTrack> pictureSidecars(const Film &film) {
    QList<ReadTrack> found;
    for (const Sidecar &sidecar : findSidecars(film.path)) {
        if (!isPictureSubtitle(sidecar.content))
            continue;
        Subtitle subtitle;
        subtitle.filmId = film.id;
        subtitle.fileName = sidecar.fileName;
        subtitle.language = sidecar.told.language;
        found.append({subtitle, {{}, CueProblem::PictureSubtitle}});
    }
    return found;
}

} // namespace

FilmLinesAnswer FilmLines::read(const Film &film, const QString &nativeLanguage) {
    FilmLinesAnswer answer;
    answer.unusable = pictureSidecars(film);
    const TrackChoice choice = chooseTracks(storedOnly(_subtitles.ofFilm(film.id)), nativeLanguage);
    answer.learned = firstReadable(film, choice.learned, answer);
    answer.native = firstReadable(film, choice.native, answer);
    return answer;
}

ReadTrack FilmLines::readOne(const Film &film, const Subtitle &subtitle) {
    const auto content = _subtitles.content(subtitle.id);
    if (!content)
        return {subtitle, {{}, CueProblem::NoCues}};
    return {subtitle, readCues(*content, countsInFrames(subtitle) ? frameRateOf(film) : FrameRate{})};
}

std::optional<ReadTrack> FilmLines::firstReadable(const Film &film, const QList<Subtitle> &candidates,
                                                  FilmLinesAnswer &answer) {
    for (const Subtitle &subtitle : candidates) {
        ReadTrack track = readOne(film, subtitle);
        if (track.reading.problem == CueProblem::None)
            return track;
        answer.unusable.append(std::move(track));
    }
    return std::nullopt;
}

} // namespace murvo::service
