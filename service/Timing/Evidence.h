// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Subtitles/Cues.h"
#include "Timing/SpeechActivity.h"

#include <QList>

#include <algorithm>
#include <cmath>
#include <vector>

namespace murvo::service {

/// A cue's place in time without its words, in the time of whoever holds it.
struct Span {
    double startMs = 0;
    double endMs = 0;
};

/// What a film says about where cues belong: a cue from a to b fits as well as atStart[a] + atEnd[b], the
/// higher the better and 0 on average for a cue put anywhere or beside the film. Frames of frameMs from the
/// film's start. A value; knows nothing of tracks and rates.
struct Evidence {
    static constexpr int fineFrameMs = 10;

    int frameMs = fineFrameMs;
    std::vector<float> atStart;
    std::vector<float> atEnd; ///< as many as atStart, never none

    [[nodiscard]] double fitOf(const Span &span) const {
        return at(atStart, span.startMs) + at(atEnd, span.endMs);
    }

    /// The same with frames `factor` times as long.
    [[nodiscard]] Evidence coarser(int factor) const;

  private:
    [[nodiscard]] double at(const std::vector<float> &values, double timeMs) const {
        const double frame = std::clamp(timeMs / frameMs, 0.0, static_cast<double>(values.size() - 1));
        const auto before = static_cast<std::size_t>(frame);
        const std::size_t after = std::min(before + 1, values.size() - 1);
        const double share = frame - std::floor(frame);
        return (1 - share) * static_cast<double>(values[before]) + share * static_cast<double>(values[after]);
    }
};

/// The cues' times in order: what starts together is one, and what can be no line of a film is left out.
[[nodiscard]] std::vector<Span> spansOf(const QList<Cue> &cues);

/// The same film looked at in two ways.
struct FilmEvidence {
    Evidence wide; ///< to find the place among all: what is near counts, too
    Evidence fine; ///< to measure within some 300 ms of the place
};

/// Of spans that are known to fit.
[[nodiscard]] FilmEvidence evidenceOf(const std::vector<Span> &reference);

/// Of the film's sound; speech.likelihood is not empty.
[[nodiscard]] FilmEvidence evidenceOf(const SpeechActivity &speech);

} // namespace murvo::service
