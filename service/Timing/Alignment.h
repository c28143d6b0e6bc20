// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Subtitles/Cues.h"
#include "Timing/SpeechActivity.h"
#include "Timing/Timing.h"

#include <QList>

#include <atomic>
#include <optional>

namespace murvo::service {

/// How a track must be moved to fit the film, and how far that can be trusted.
struct Alignment {
    Timing timing;
    /// 0 to 1. Each condition of a right answer (it stands out of chance and above every other place and
    /// ratio, holds to both ends of the track, is measured finely enough, its cut is clear) gives value /
    /// (value + needed); this is the lowest: 0.5 is just enough, 0.75 three times as much.
    double confidence = 0;
    bool isSure = false; ///< every cue lies within 100 ms of where it belongs, as far as can be told
};

/// Finds the offset (up to ten minutes either way), the ratio of two film rates and at most one cut that lay
/// the track onto the reference, a track known to fit, of any language. The simpler explanation is taken
/// unless another fits clearly better. None when cancelled or when one of the two has next to no cues. Any
/// thread; a track of two hours takes some tenths of a second.
[[nodiscard]] std::optional<Alignment> alignToTrack(const QList<Cue> &track, const QList<Cue> &reference,
                                                    const std::atomic<bool> &isCancelled);

/// The same, onto where speech is in the film's sound.
[[nodiscard]] std::optional<Alignment> alignToSpeech(const QList<Cue> &track, const SpeechActivity &speech,
                                                     const std::atomic<bool> &isCancelled);

} // namespace murvo::service
