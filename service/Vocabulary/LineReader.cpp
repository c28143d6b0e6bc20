// SPDX-License-Identifier: GPL-3.0-or-later
#include "Vocabulary/LineReader.h"

#include "Store/FilmTable.h"
#include "Store/SettingsTable.h"
#include "Store/TimingTable.h"

#include <algorithm>

namespace murvo::service {

namespace {

// No line is shown for longer; see inOrder().
constexpr qint64 longestLineMs = 60'000;
// For what is lost by rounding.
constexpr qint64 marginMs = 10;

qint64 ownTimeMs(qint64 filmMs, const Timing &timing, qint64 behindCutMs) {
    return (filmMs - timing.offsetMs - behindCutMs) * timing.rateDenominator / timing.rateNumerator;
}

/// A stored line at the film's times.
struct Placed {
    qint64 startMs;
    qint64 endMs;
};

Placed placed(const StoredLine &line, const Timing &timing) {
    Timing uncut = timing; // a line moves as a whole, by where it starts
    uncut.cut.reset();
    const qint64 startMs = filmTimeMs(line.startMs, timing);
    const qint64 lengthMs = filmTimeMs(line.endMs, uncut) - filmTimeMs(line.startMs, uncut);
    return {std::max<qint64>(startMs, 0), std::max<qint64>(startMs + lengthMs, 0)};
}

} // namespace

LineReader::LineReader(const LineParts &parts)
    : _parts(parts)
    , _nativeLanguage(parts.settings.nativeLanguage()) {}

const FilmTracks &LineReader::tracks(qint32 filmId) {
    const auto known = _tracks.constFind(filmId);
    if (known != _tracks.constEnd())
        return *known;
    return *_tracks.insert(filmId, tracksOf(filmId, _nativeLanguage, _parts.subtitles, _parts.choices));
}

const Timing &LineReader::timing(qint32 subtitleId) {
    const auto known = _timings.constFind(subtitleId);
    return known != _timings.constEnd() ? *known
                                        : *_timings.insert(subtitleId, _parts.timings.timing(subtitleId));
}

ShownLine LineReader::shown(const StoredLine &line, qint32 filmId) {
    if (!_filmNames.contains(filmId))
        _filmNames.insert(filmId, _parts.films.find(filmId).value_or(Film{}).name);
    const Placed place = placed(line, timing(line.subtitleId));
    ShownLine shown{line.id,   filmId, _filmNames.value(filmId), line.subtitleId, place.startMs, place.endMs,
                    line.text, {},     language(line.subtitleId)};
    const FilmTracks &of = tracks(filmId);
    const bool isNative = of.native && of.native->id == line.subtitleId;
    if (const auto &other = isNative ? of.english : of.native; other && other->id != line.subtitleId)
        shown.translation = beneath(shown, other->id);
    return shown;
}

const QString &LineReader::language(qint32 subtitleId) {
    const auto known = _languages.constFind(subtitleId);
    if (known != _languages.constEnd())
        return *known;
    const auto subtitle = _parts.subtitles.find(subtitleId);
    return *_languages.insert(subtitleId, subtitle ? subtitle->likelyLanguage() : QString());
}

// What is on the screen with it for at least half of the shorter of the two.
QString LineReader::beneath(const ShownLine &line, qint32 otherSubtitleId) {
    const Timing &moved = timing(otherSubtitleId);
    QList<qint64> offsets{0};
    if (moved.cut)
        offsets.append(moved.cut->offsetMs);
    QStringList found;
    QList<qint64> seen;
    for (const qint64 behindCutMs : offsets) {
        const qint64 fromMs = ownTimeMs(line.startMs, moved, behindCutMs) - longestLineMs - marginMs;
        const qint64 toMs = ownTimeMs(line.endMs, moved, behindCutMs) + marginMs;
        for (const StoredLine &other : _parts.lines.between(otherSubtitleId, fromMs, toMs)) {
            const Placed place = placed(other, moved);
            const qint64 together = std::min(place.endMs, line.endMs) - std::max(place.startMs, line.startMs);
            const qint64 shorter = std::min(place.endMs - place.startMs, line.endMs - line.startMs);
            if (together <= 0 || together * 2 < shorter || seen.contains(other.id))
                continue;
            seen.append(other.id);
            found.append(other.text);
        }
    }
    return found.join(u'\n');
}

} // namespace murvo::service
