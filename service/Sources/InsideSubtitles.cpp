// SPDX-License-Identifier: GPL-3.0-or-later
#include "Sources/InsideSubtitles.h"

#include "ChangeCounts.h"
#include "Log.h"
#include "Sources/InsideTracks.h"
#include "Subtitles/Findings.h"
#include "Subtitles/WebVttWriter.h"

#include <QDateTime>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace murvo::service {

namespace {

using namespace std::chrono_literals;

// Lines come to the page soon at first, when it has none, and then ever more rarely: each time it takes all.
constexpr std::chrono::milliseconds firstPause = 30ms;
constexpr std::chrono::milliseconds longestPause = 2s;
// No film has so many; a crafted one may claim to.
constexpr qsizetype mostTracks = 100;
constexpr qsizetype mostCues = 150'000;
constexpr qsizetype mostCharacters = 8'000'000;

// Also of a film that is known by its hash, which sees the ends only: it may have been unfinished in the
// middle.
QString tellingFile(const Film &film) {
    const QFileInfo file(film.path);
    if (film.path.isEmpty() || !file.isFile())
        return {};
    return QStringLiteral("%1:%2").arg(file.size()).arg(file.lastModified().toMSecsSinceEpoch());
}

Subtitle describe(const InsideTrack &track) {
    Subtitle subtitle;
    subtitle.source = SubtitleSource::Inside;
    subtitle.place = QString::number(track.streamIndex);
    subtitle.title = track.title;
    subtitle.language = track.language;
    subtitle.forced = track.forced;
    subtitle.hearingImpaired = track.hearingImpaired;
    return subtitle;
}

/// When to tell the pages that there are more lines: the first ones at once, then after ever longer pauses.
class Announcements {
  public:
    [[nodiscard]] bool isDue() {
        const auto now = Clock::now();
        if (now < _next)
            return false;
        _next = now + _pause;
        _pause = std::min(2 * _pause, longestPause);
        return true;
    }

  private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point _next;
    std::chrono::milliseconds _pause = firstPause;
};

} // namespace

void InsideSubtitles::begin(const Film &film) {
    const QString file = tellingFile(film);
    if (file.isEmpty() || file == film.insideRead)
        return;
    const auto reading = std::make_shared<Reading>(Reading{film, 0, {}, 0, 0});
    const std::lock_guard lock(_mutex);
    if (_reading && _reading->film.id == film.id)
        return;
    _reading = reading;
    _worker.start([this, reading, file](const std::atomic<bool> &isCancelled) {
        read(*reading, file, isCancelled);
        const std::lock_guard atEnd(_mutex);
        if (_reading == reading)
            _reading = nullptr;
        _changes.announce(reading->film.id);
    });
}

void InsideSubtitles::stop() {
    {
        const std::lock_guard lock(_mutex);
        _reading = nullptr;
        _worker.cancel();
    }
    _worker.waitUntilIdle();
}

InsideProgress InsideSubtitles::progress(qint32 filmId) const {
    const std::lock_guard lock(_mutex);
    return _reading && _reading->film.id == filmId ? InsideProgress{true, _reading->percent}
                                                   : InsideProgress{};
}

bool InsideSubtitles::isReading(qint32 subtitleId) const {
    const std::lock_guard lock(_mutex);
    return trackOf(subtitleId) != nullptr;
}

std::optional<QList<Cue>> InsideSubtitles::linesSoFar(qint32 subtitleId) const {
    QList<Cue> cues;
    {
        const std::lock_guard lock(_mutex);
        const Track *track = trackOf(subtitleId);
        if (track == nullptr)
            return std::nullopt;
        cues = track->cues;
    }
    return inOrder(std::move(cues));
}

const InsideSubtitles::Track *InsideSubtitles::trackOf(qint32 subtitleId) const {
    if (!_reading)
        return nullptr;
    const QList<Track> &tracks = _reading->tracks;
    const auto track = std::find_if(tracks.begin(), tracks.end(), [subtitleId](const Track &each) {
        return each.subtitleId == subtitleId && each.isText;
    });
    return track == tracks.end() ? nullptr : &*track;
}

void InsideSubtitles::read(Reading &reading, const QString &file, const std::atomic<bool> &isCancelled) {
    Announcements announcements;
    const auto announce = [&] {
        if (!isCancelled && announcements.isDue())
            _changes.announce(reading.film.id);
    };
    const InsideTrackEvents events{
        [&](const QList<InsideTrack> &tracks) { found(reading, tracks.mid(0, mostTracks)); },
        [&](qsizetype track, Cue cue) {
            add(reading, track, std::move(cue));
            announce();
        },
        [&](double share) {
            const std::lock_guard lock(_mutex);
            reading.percent = std::clamp(static_cast<int>(share * 100), 0, 100);
        }};
    try {
        const bool isWhole = readInsideTracks(reading.film.path, events, isCancelled);
        if (isCancelled)
            return;
        store(reading);
        if (isWhole)
            _films.setInsideRead(reading.film.id, file);
    } catch (const std::exception &failure) {
        qCWarning(serviceLog) << "The film's own subtitles could not be kept:" << failure.what();
    }
}

void InsideSubtitles::found(Reading &reading, const QList<InsideTrack> &tracks) {
    QList<Subtitle> described;
    for (const InsideTrack &track : tracks)
        described.append(describe(track));
    const QList<Subtitle> rows = _subtitles.findOrAdd(reading.film.id, described);
    QList<qint32> ids;
    for (qsizetype i = 0; i < rows.size(); ++i) {
        ids.append(rows[i].id);
        const CueProblem problem =
            tracks[i].isPictures ? CueProblem::PictureSubtitle : CueProblem::UnknownFormat;
        if (!tracks[i].isText)
            _subtitles.setFindings(rows[i].id, {0, QString(), codeOf(problem)});
    }
    _subtitles.onlyTheseAreThere(reading.film.id, SubtitleSource::Inside, ids);
    const std::lock_guard lock(_mutex);
    for (qsizetype i = 0; i < rows.size(); ++i)
        reading.tracks.append({rows[i].id, tracks[i].isText, {}});
}

void InsideSubtitles::add(Reading &reading, qsizetype track, Cue cue) {
    const std::lock_guard lock(_mutex);
    if (track >= reading.tracks.size())
        return;
    Track &to = reading.tracks[track];
    const qsizetype characters = cue.lines.join(QString()).size();
    if (reading.cues >= mostCues || reading.characters + characters > mostCharacters)
        return;
    ++reading.cues;
    reading.characters += characters;
    to.cues.append(std::move(cue));
}

// Only the thread that reads changes the tracks: it may look at them without the lock.
void InsideSubtitles::store(const Reading &reading) {
    for (const Track &track : reading.tracks) {
        if (!track.isText)
            continue;
        const QList<Cue> cues = inOrder(track.cues);
        const CueProblem problem = cues.isEmpty() ? CueProblem::NoCues : CueProblem::None;
        std::ignore = _subtitles.storeContent(track.subtitleId, webVtt(cues), findingsOf({cues, problem}));
    }
}

} // namespace murvo::service
