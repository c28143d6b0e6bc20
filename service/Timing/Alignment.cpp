// SPDX-License-Identifier: GPL-3.0-or-later
#include "Timing/Alignment.h"

#include "Timing/Evidence.h"
#include "Timing/PlacementCheck.h"
#include "Timing/PlacementSearch.h"

#include <algorithm>
#include <cmath>

namespace murvo::service {

namespace {

// With fewer nothing can be said at all.
constexpr std::size_t fewestSpans = 4;
constexpr std::size_t fewestSpansToBeSure = 8;
// In noises of one span: what an answer must gain over a simpler one to be taken instead.
constexpr double neededForRatio = 3;
constexpr double neededForCut = 10;
// In standard errors: what a ratio near 1 must gain over 1.
constexpr double neededForNeighbour = 1;
// Nothing is measured better than that.
constexpr double stillMs = 5;

Placement simplestOfTheBest(const PlacementSearch &search) {
    const auto worth = [&](const Placement &placement) {
        return placement.fit - (placement.ratio.isOne() ? 0 : neededForRatio * search.noiseOfSpan()) -
               (placement.cutBefore ? neededForCut * search.noiseOfSpan() : 0);
    };
    Placement best = search.plain().front();
    for (const std::vector<Placement> *answers : {&search.plain(), &search.withCut()}) {
        for (const Placement &answer : *answers) {
            if (worth(answer) > worth(best))
                best = answer;
        }
    }
    return best;
}

/// At another ratio, the middle of each part staying where it is.
Placement turned(Placement placement, RateRatio ratio, const std::vector<Span> &track) {
    const std::size_t cutBefore = placement.cutBefore.value_or(track.size());
    const double change = placement.ratio.value() - ratio.value();
    const auto middleMs = [&track](std::size_t from, std::size_t to) {
        return from < to ? (track[from].startMs + track[to - 1].startMs) / 2 : 0;
    };
    placement.offsetMs += change * middleMs(0, cutBefore);
    placement.offsetBehindCutMs += change * middleMs(cutBefore, track.size());
    placement.ratio = ratio;
    return placement;
}

/// Measures the placement, and its neighbours where they prove better; the placement then is the best of
/// them.
PlacementError settle(Placement &placement, const PlacementSearch &search, const std::vector<Span> &track,
                      const Evidence &fine) {
    PlacementError error;
    for (int round = 0; round < 3; ++round) {
        const std::vector<NeighbourRatio> neighbours = neighboursOf(placement, search, track);
        error = measureError(partsOf(track, placement), neighbours, fine);
        placement.offsetMs += error.offsetMs.front();
        placement.offsetBehindCutMs += error.offsetMs.back();
        const auto best = std::min_element(error.aboveNeighbours.begin(), error.aboveNeighbours.end());
        const double needed = placement.ratio.isOne() ? neededForNeighbour : 0;
        if (best == error.aboveNeighbours.end() || *best >= -needed)
            break;
        const auto index = static_cast<std::size_t>(best - error.aboveNeighbours.begin());
        placement = turned(placement, neighbours[index].ratio, track);
    }
    return error;
}

/// The cut lies in the middle of the pause before the first span behind it.
Timing timingOf(const Placement &placement, const std::vector<Span> &track) {
    Timing timing;
    timing.offsetMs = std::llround(placement.offsetMs);
    timing.rateNumerator = placement.ratio.numerator;
    timing.rateDenominator = placement.ratio.denominator;
    if (placement.cutBefore) {
        const Span &before = track[*placement.cutBefore - 1];
        const double behindMs = track[*placement.cutBefore].startMs;
        const double pauseFromMs = std::min(std::max(before.endMs, before.startMs + 1), behindMs);
        timing.cut = Cut{std::llround((pauseFromMs + behindMs) / 2),
                         std::llround(placement.offsetBehindCutMs - placement.offsetMs)};
    } else if (placement.ratio.isOne() && std::abs(placement.offsetMs) < stillMs) {
        timing.offsetMs = 0;
    }
    return timing;
}

std::optional<Alignment> align(const std::vector<Span> &track, const FilmEvidence &evidence,
                               const std::atomic<bool> &isCancelled) {
    if (track.size() < fewestSpans)
        return std::nullopt;
    PlacementSearch search(track, evidence.wide, isCancelled);
    if (!search.run())
        return std::nullopt;
    Placement placement = simplestOfTheBest(search);
    const PlacementError error = settle(placement, search, track, evidence.fine);

    Alignment alignment;
    alignment.timing = timingOf(placement, track);
    alignment.confidence = confidenceOf(placement, search, track, evidence.wide, error);
    alignment.isSure = alignment.confidence >= 0.5 && track.size() >= fewestSpansToBeSure;
    if (isCancelled)
        return std::nullopt;
    return alignment;
}

} // namespace

std::optional<Alignment> alignToTrack(const QList<Cue> &track, const QList<Cue> &reference,
                                      const std::atomic<bool> &isCancelled) {
    const std::vector<Span> known = spansOf(reference);
    if (known.size() < fewestSpans)
        return std::nullopt;
    return align(spansOf(track), evidenceOf(known), isCancelled);
}

std::optional<Alignment> alignToSpeech(const QList<Cue> &track, const SpeechActivity &speech,
                                       const std::atomic<bool> &isCancelled) {
    if (speech.likelihood.empty())
        return std::nullopt;
    return align(spansOf(track), evidenceOf(speech), isCancelled);
}

} // namespace murvo::service
