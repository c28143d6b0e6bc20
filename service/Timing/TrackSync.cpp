// SPDX-License-Identifier: GPL-3.0-or-later
#include "Timing/TrackSync.h"

#include "Log.h"
#include "Store/TimingTable.h"
#include "Subtitles/FilmLines.h"
#include "Timing/SpeechActivity.h"

namespace murvo::service {

void TrackSync::begin(const Film &film, const Subtitle &subtitle) {
    const auto job = std::make_shared<Job>(Job{film, subtitle, {SyncState::Stage::Running, 0, {}, false}});
    const std::lock_guard lock(_mutex);
    _job = job;
    _worker.start([this, job](const std::atomic<bool> &isCancelled) {
        try {
            run(*job, isCancelled);
        } catch (const std::exception &failure) {
            qCWarning(serviceLog) << "A subtitle could not be fitted to its film:" << failure.what();
        }
        const std::lock_guard atEnd(_mutex);
        job->state.stage = SyncState::Stage::Done;
    });
}

void TrackSync::cancel(qint32 subtitleId) {
    const std::lock_guard lock(_mutex);
    if (!_job || _job->subtitle.id != subtitleId)
        return;
    _job = nullptr;
    _worker.cancel();
}

void TrackSync::stop() {
    {
        const std::lock_guard lock(_mutex);
        _job = nullptr;
        _worker.cancel();
    }
    _worker.waitUntilIdle();
}

SyncState TrackSync::state(qint32 subtitleId) const {
    const std::lock_guard lock(_mutex);
    return _job && _job->subtitle.id == subtitleId ? _job->state : SyncState{};
}

void TrackSync::run(Job &job, const std::atomic<bool> &isCancelled) {
    const QList<Cue> cues = _lines.readOne(job.film, job.subtitle).reading.cues;
    std::optional<Alignment> alignment = alignToOwnTrack(job, cues, isCancelled);
    bool isAgainstTrack = alignment.has_value();
    if (!alignment || !alignment->isSure) {
        if (const auto bySound = alignToSound(job, cues, isCancelled)) {
            alignment = bySound;
            isAgainstTrack = false;
        }
    }
    const std::lock_guard lock(_mutex);
    job.state.alignment = alignment;
    job.state.isAgainstTrack = isAgainstTrack;
}

// The film's own tracks fit it; of several the one with the most lines tells most.
std::optional<Alignment> TrackSync::alignToOwnTrack(const Job &job, const QList<Cue> &cues,
                                                    const std::atomic<bool> &isCancelled) {
    std::optional<Subtitle> best;
    for (const Subtitle &other : _subtitles.ofFilm(job.film.id)) {
        if (other.source == SubtitleSource::Inside && other.id != job.subtitle.id && other.stored() &&
            other.problem.isEmpty() && (!best || other.cueCount > best->cueCount))
            best = other;
    }
    if (!best)
        return std::nullopt;
    // Unless the learner knows better and has moved it.
    const QList<Cue> known = retimed(_lines.readOne(job.film, *best).reading.cues, _timings.timing(best->id));
    return alignToTrack(cues, known, isCancelled);
}

std::optional<Alignment> TrackSync::alignToSound(Job &job, const QList<Cue> &cues,
                                                 const std::atomic<bool> &isCancelled) {
    const auto progress = [&](double share) {
        const std::lock_guard lock(_mutex);
        job.state.percent = static_cast<int>(share * 100);
    };
    constexpr int theFilmsChoice = -1;
    const auto speech = findSpeech(job.film.path, theFilmsChoice, progress, isCancelled);
    if (!speech)
        return std::nullopt;
    return alignToSpeech(cues, *speech, isCancelled);
}

} // namespace murvo::service
