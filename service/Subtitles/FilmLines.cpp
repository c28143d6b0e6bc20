// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/FilmLines.h"

#include "Sources/FilmProbe.h"
#include "Sources/InsideSubtitles.h"
#include "Subtitles/Findings.h"
#include "Subtitles/TrackChoice.h"

#include <algorithm>

namespace murvo::service {

namespace {

FrameRate frameRateOf(const Film &film) {
    const auto facts = probeFilm(film.path);
    return facts ? FrameRate{facts->frameRateNumerator, facts->frameRateDenominator} : FrameRate{};
}

CueReading readContent(const QByteArray &content, const Subtitle &subtitle, FrameRate filmRate = {}) {
    return readCues(content, filmRate, subtitle.encoding.toLatin1());
}

} // namespace

FilmLinesAnswer FilmLines::read(const Film &film, const QString &nativeLanguage) {
    FilmLinesAnswer answer;
    answer.subtitles = subtitlesOf(film);
    QList<Subtitle> usable = answer.subtitles;
    usable.removeIf([this](const Subtitle &subtitle) {
        return !subtitle.problem.isEmpty() || (!subtitle.stored() && !_inside.isReading(subtitle.id));
    });
    const TrackChoice choice = chooseTracks(usable, nativeLanguage);
    answer.learned = line(film, Line::Learned, answer, choice.learned);
    answer.native = line(film, Line::Native, answer, choice.native);
    return answer;
}

ReadTrack FilmLines::readOne(const Film &film, const Subtitle &subtitle) {
    if (const auto soFar = _inside.linesSoFar(subtitle.id))
        return {subtitle, {*soFar, CueProblem::None}};
    const auto content = _subtitles.content(subtitle.id);
    if (!content)
        return {subtitle, {{}, CueProblem::NoCues}};
    return {subtitle, readStored(film, subtitle, *content)};
}

CueReading FilmLines::readStored(const Film &film, const Subtitle &subtitle, const QByteArray &content) {
    const bool isInFrames = countsInFrames(content, subtitle.encoding.toLatin1());
    return readContent(content, subtitle, isInFrames ? frameRateOf(film) : FrameRate{});
}

bool FilmLines::store(const Subtitle &subtitle, const QByteArray &content) {
    Subtitle as = subtitle;
    if (subtitle.contentSha256 != SubtitleTable::sha256(content))
        as.encoding.clear(); // it was chosen for another content
    return _subtitles.storeContent(subtitle.id, content, findingsOf(readContent(content, as)));
}

void FilmLines::setEncoding(const Subtitle &subtitle, const QString &encoding) {
    Subtitle changed = subtitle;
    changed.encoding = encoding;
    const QByteArray content = _subtitles.content(subtitle.id).value_or(QByteArray());
    _subtitles.setEncoding(subtitle.id, encoding, findingsOf(readContent(content, changed)));
}

// Contents that an earlier version has stored are looked at now.
QList<Subtitle> FilmLines::subtitlesOf(const Film &film) {
    QList<Subtitle> subtitles = _subtitles.ofFilm(film.id);
    bool isAnyNew = false;
    for (const Subtitle &subtitle : subtitles) {
        if (!subtitle.stored() || subtitle.cueCount >= 0)
            continue;
        isAnyNew = true;
        _subtitles.setFindings(subtitle.id, findingsOf(readOne(film, subtitle).reading));
    }
    return isAnyNew ? _subtitles.ofFilm(film.id) : subtitles;
}

// The learner's choice, where there is one that was not removed, else the first candidate that can be read
// and is not the other line.
std::optional<ReadTrack> FilmLines::line(const Film &film, Line line, const FilmLinesAnswer &answer,
                                         const QList<Subtitle> &candidates) {
    const auto isListed = [&answer](qint32 id) {
        return std::any_of(answer.subtitles.begin(), answer.subtitles.end(),
                           [id](const Subtitle &each) { return each.id == id; });
    };
    QList<Subtitle> wanted = candidates;
    const LineChoice chosen = _choices.choice(film.id, line);
    if (chosen && (*chosen == 0 || isListed(*chosen))) {
        wanted = answer.subtitles;
        wanted.removeIf([id = *chosen](const Subtitle &each) { return each.id != id; });
    } else {
        const qint32 other = line == Line::Learned ? _choices.choice(film.id, Line::Native).value_or(0)
                             : answer.learned      ? answer.learned->subtitle.id
                                                   : 0;
        wanted.removeIf([other](const Subtitle &each) { return each.id == other; });
    }
    for (const Subtitle &subtitle : wanted) {
        ReadTrack track = readOne(film, subtitle);
        if (track.reading.problem == CueProblem::None)
            return track;
    }
    return std::nullopt;
}

} // namespace murvo::service
