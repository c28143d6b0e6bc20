// SPDX-License-Identifier: GPL-3.0-or-later
#include "Timing/PlacementCheck.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <utility>

namespace murvo::service {

namespace {

/// Fits of one part at small changes of its offset and of the whole track's drift.
class Grid {
  public:
    static constexpr double offsetStepMs = 10;
    static constexpr double driftStepMs = 20;
    static constexpr int offsetReach = 30; ///< steps to each side
    static constexpr int driftReach = 30;
    static constexpr int offsets = 2 * offsetReach + 1;
    static constexpr int drifts = 2 * driftReach + 1;

    [[nodiscard]] double at(int drift, int offset) const { return _fits[place(drift, offset)]; }

    /// leverage: where the span lies between the track's ends, -1 to 1 around the middle of its part.
    void add(const Span &span, double leverage, const Evidence &evidence) {
        for (int drift = 0; drift < drifts; ++drift) {
            const double driftMs = (drift - driftReach) * driftStepMs * leverage;
            for (int offset = 0; offset < offsets; ++offset) {
                const double changeMs = (offset - offsetReach) * offsetStepMs + driftMs;
                _fits[place(drift, offset)] +=
                    evidence.fitOf({span.startMs + changeMs, span.endMs + changeMs});
            }
        }
    }

    void add(const Grid &other) {
        for (std::size_t i = 0; i < _fits.size(); ++i)
            _fits[i] += other._fits[i];
    }

    [[nodiscard]] int bestOffset(int drift) const {
        const auto row = _fits.begin() + drift * offsets;
        return static_cast<int>(std::distance(row, std::max_element(row, row + offsets)));
    }

  private:
    static std::size_t place(int drift, int offset) {
        return static_cast<std::size_t>(drift) * offsets + static_cast<std::size_t>(offset);
    }

    std::vector<double> _fits = std::vector<double>(static_cast<std::size_t>(drifts * offsets), 0.0);
};

/// Where between the steps the top of a parabola through three of them lies, -0.5 to 0.5.
double topBetween(double before, double top, double after) {
    const double bend = before - 2 * top + after;
    return bend < 0 ? std::clamp((before - after) / (2 * bend), -0.5, 0.5) : 0;
}

double bestOffsetMs(const Grid &grid) {
    constexpr int still = Grid::driftReach;
    const int best = grid.bestOffset(still);
    double step = best - Grid::offsetReach;
    if (best > 0 && best + 1 < Grid::offsets)
        step += topBetween(grid.at(still, best - 1), grid.at(still, best), grid.at(still, best + 1));
    return step * Grid::offsetStepMs;
}

/// The fit of all parts at each drift, every part at its own best offset.
using DriftFits = std::array<double, Grid::drifts>;

DriftFits driftFitsOf(const std::vector<Grid> &parts) {
    DriftFits fits{};
    for (int drift = 0; drift < Grid::drifts; ++drift) {
        for (const Grid &part : parts)
            fits[static_cast<std::size_t>(drift)] += part.at(drift, part.bestOffset(drift));
    }
    return fits;
}

double bestDriftMs(const DriftFits &fits) {
    const auto best = static_cast<std::size_t>(std::max_element(fits.begin(), fits.end()) - fits.begin());
    double step = static_cast<double>(best) - Grid::driftReach;
    if (best > 0 && best + 1 < fits.size())
        step += topBetween(fits[best - 1], fits[best], fits[best + 1]);
    return step * Grid::driftStepMs;
}

/// How much better no drift fits than that one.
double gainOver(double driftMs, const DriftFits &fits) {
    const double step = driftMs / Grid::driftStepMs + Grid::driftReach;
    const auto before = static_cast<std::size_t>(step);
    const double share = step - std::floor(step);
    return fits[Grid::driftReach] - (1 - share) * fits[before] - share * fits[before + 1];
}

/// Standard error of a figure from what it becomes with half of what it was measured from: leaving out less
/// would not move the top of a jagged hill.
double errorOf(double value, const std::vector<double> &ofHalves) {
    double squares = 0;
    for (const double half : ofHalves)
        squares += (half - value) * (half - value);
    return std::sqrt(squares / static_cast<double>(ofHalves.size()));
}

double halfLengthMs(const std::vector<std::vector<Span>> &parts) {
    double longest = 0;
    for (const std::vector<Span> &part : parts)
        longest += part.back().startMs - part.front().startMs;
    return std::max(longest / 2, 1.0);
}

/// The grids of all parts, kept apart for interleaved groups of spans.
class Measurement {
  public:
    static constexpr unsigned groupCount = 10;
    static constexpr unsigned all = (1U << groupCount) - 1; ///< groups as bits

    Measurement(const std::vector<std::vector<Span>> &parts, const Evidence &evidence) {
        const double halfMs = halfLengthMs(parts);
        for (const std::vector<Span> &part : parts) {
            std::vector<Grid> groups(groupCount);
            const double middleMs = (part.front().startMs + part.back().startMs) / 2;
            for (std::size_t i = 0; i < part.size(); ++i)
                groups[i % groupCount].add(part[i], (part[i].startMs - middleMs) / halfMs, evidence);
            _parts.push_back(std::move(groups));
        }
    }

    /// Every choice of half of the groups.
    [[nodiscard]] static std::vector<unsigned> halves() {
        std::vector<unsigned> choices;
        for (unsigned chosen = 0; chosen < all; ++chosen) {
            if (std::popcount(chosen) == groupCount / 2)
                choices.push_back(chosen);
        }
        return choices;
    }

    [[nodiscard]] std::vector<Grid> sumOf(unsigned chosen) const {
        std::vector<Grid> sums(_parts.size());
        for (std::size_t part = 0; part < _parts.size(); ++part) {
            for (unsigned group = 0; group < groupCount; ++group) {
                if ((chosen >> group & 1U) != 0)
                    sums[part].add(_parts[part][group]);
            }
        }
        return sums;
    }

  private:
    std::vector<std::vector<Grid>> _parts;
};

} // namespace

std::vector<std::vector<Span>> partsOf(const std::vector<Span> &track, const Placement &placement) {
    const std::size_t cutBefore = placement.cutBefore.value_or(track.size());
    std::vector<std::vector<Span>> parts(placement.cutBefore ? 2 : 1);
    const std::vector<Span> spans = stretched(track, placement.ratio);
    for (std::size_t i = 0; i < spans.size(); ++i) {
        const double offsetMs = i < cutBefore ? placement.offsetMs : placement.offsetBehindCutMs;
        parts[i < cutBefore ? 0 : 1].push_back({spans[i].startMs + offsetMs, spans[i].endMs + offsetMs});
    }
    return parts;
}

std::vector<NeighbourRatio> neighboursOf(const Placement &placement, const PlacementSearch &search,
                                         const std::vector<Span> &track) {
    const double halfMs = halfLengthMs(partsOf(track, placement));
    std::vector<NeighbourRatio> neighbours;
    for (const Placement &other : search.plain()) {
        const double factor = other.ratio.value() / placement.ratio.value();
        const double driftMs = (factor - 1) * halfMs;
        if (std::abs(factor - 1) > 1e-6 && std::abs(driftMs) < Grid::driftStepMs * (Grid::driftReach - 1))
            neighbours.push_back({other.ratio, factor, driftMs});
    }
    return neighbours;
}

PlacementError measureError(const std::vector<std::vector<Span>> &parts,
                            const std::vector<NeighbourRatio> &neighbours, const Evidence &evidence) {
    Measurement measurement(parts, evidence);
    PlacementError error;
    const std::vector<Grid> whole = measurement.sumOf(Measurement::all);
    const DriftFits fits = driftFitsOf(whole);
    std::vector<double> drifts;
    std::vector<std::vector<double>> offsets(parts.size());
    std::vector<std::vector<double>> gains(neighbours.size());
    for (const unsigned chosen : Measurement::halves()) {
        const std::vector<Grid> half = measurement.sumOf(chosen);
        const DriftFits halfFits = driftFitsOf(half);
        drifts.push_back(bestDriftMs(halfFits));
        for (std::size_t i = 0; i < parts.size(); ++i)
            offsets[i].push_back(bestOffsetMs(half[i]));
        for (std::size_t i = 0; i < neighbours.size(); ++i)
            gains[i].push_back(2 * gainOver(neighbours[i].driftMs, halfFits));
    }
    error.driftMs = bestDriftMs(fits);
    error.driftErrorMs = errorOf(error.driftMs, drifts);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        error.offsetMs.push_back(bestOffsetMs(whole[i]));
        error.offsetErrorMs.push_back(errorOf(error.offsetMs.back(), offsets[i]));
    }
    for (std::size_t i = 0; i < neighbours.size(); ++i) {
        const double gain = gainOver(neighbours[i].driftMs, fits);
        error.aboveNeighbours.push_back(gain / std::max(errorOf(gain, gains[i]), 1e-6));
    }
    return error;
}

namespace {

/// How far a figure is above what it needs: 0.5 when it just reaches it.
double share(double value, double needed) {
    return value > 0 ? value / (value + needed) : 0;
}

// Of chance alone the best of all offsets and ratios stands some 4.5 noises out.
constexpr double neededNoises = 7;
constexpr double neededNoisesAbove = 3;
// The rest to 100 ms is for what the evidence itself is off: voices are noticed a little late.
constexpr double allowedErrorMs = 85;

double standsOut(const std::vector<Span> &part, const PlacementSearch &search) {
    const OffsetScan scan = search.scan(part);
    if (std::abs(scan.best[0].offsetMs) > 300) // the part itself would rather be elsewhere
        return 0;
    const double above = (scan.best[0].fit - scan.best[1].fit) / scan.noise;
    return std::min(share(scan.best[0].fit / scan.noise, neededNoises), share(above, neededNoisesAbove));
}

/// Above every answer at a ratio that is no neighbour.
double isAboveOtherRatios(const Placement &placement, const PlacementSearch &search,
                          const std::vector<NeighbourRatio> &neighbours, std::size_t spanCount) {
    const double noise = search.noiseOfSpan() * std::sqrt(static_cast<double>(spanCount));
    double weakest = 1;
    const auto compare = [&](const Placement &other) {
        const double factor = other.ratio.value() / placement.ratio.value();
        const bool isNeighbour =
            std::abs(factor - 1) < 1e-6 ||
            std::any_of(neighbours.begin(), neighbours.end(), [factor](const NeighbourRatio &neighbour) {
                return std::abs(neighbour.factor - factor) < 1e-6;
            });
        if (!isNeighbour)
            weakest = std::min(weakest, share((placement.fit - other.fit) / noise, neededNoisesAbove));
    };
    std::for_each(search.plain().begin(), search.plain().end(), compare);
    if (placement.cutBefore)
        std::for_each(search.withCut().begin(), search.withCut().end(), compare);
    return weakest;
}

/// Neighbouring ratios must be excluded or do no harm, and no other drift be seen.
double isFine(const std::vector<std::vector<Span>> &parts, const std::vector<NeighbourRatio> &neighbours,
              const PlacementError &error) {
    constexpr double neededErrorsAbove = 1.5;
    const double offsetErrorMs = *std::max_element(error.offsetErrorMs.begin(), error.offsetErrorMs.end());
    double longestMs = 0;
    for (const std::vector<Span> &part : parts)
        longestMs = std::max(longestMs, part.back().startMs - part.front().startMs);
    double weakest = allowedErrorMs / (allowedErrorMs + 3 * offsetErrorMs);
    for (std::size_t i = 0; i < neighbours.size(); ++i) {
        const double harmMs = std::abs(neighbours[i].factor - 1) * longestMs / 2 + 2 * offsetErrorMs;
        weakest = std::min(weakest, std::max(share(error.aboveNeighbours[i], neededErrorsAbove),
                                             allowedErrorMs / (allowedErrorMs + harmMs)));
    }
    const double driftMs = std::abs(error.driftMs);
    if (driftMs > allowedErrorMs)
        weakest = std::min(weakest, share(3 * error.driftErrorMs, driftMs));
    return weakest;
}

/// A track whose first or last lines lie elsewhere (a second cut) loses them here: as many at each end as are
/// needed to see them fit.
double reachesItsEnds(const std::vector<Span> &part, const Evidence &evidence, double noiseOfSpan) {
    std::vector<double> fits;
    double mean = 0;
    for (const Span &span : part) {
        fits.push_back(evidence.fitOf(span));
        mean += fits.back() / static_cast<double>(part.size());
    }
    if (mean <= 0)
        return 0;
    const double seen = 4.5 * noiseOfSpan / mean;
    const auto count = std::clamp<std::size_t>(static_cast<std::size_t>(std::ceil(seen * seen)),
                                               std::min<std::size_t>(5, part.size()), part.size());
    double first = 0;
    double last = 0;
    for (std::size_t i = 0; i < count; ++i) {
        first += fits[i];
        last += fits[part.size() - 1 - i];
    }
    return share(std::min(first, last) / (noiseOfSpan * std::sqrt(static_cast<double>(count))), 2);
}

/// How much less every other place of the cut fits, in noises of a span.
double cutIsClear(const std::vector<Span> &track, const Placement &placement, const Evidence &evidence,
                  double noiseOfSpan) {
    const std::vector<Span> spans = stretched(track, placement.ratio);
    const auto gainOfFirst = [&](std::size_t i) {
        const Span &span = spans[i];
        return evidence.fitOf({span.startMs + placement.offsetMs, span.endMs + placement.offsetMs}) -
               evidence.fitOf(
                   {span.startMs + placement.offsetBehindCutMs, span.endMs + placement.offsetBehindCutMs});
    };
    double margin = std::numeric_limits<double>::infinity();
    double lost = 0;
    for (std::size_t i = *placement.cutBefore; i-- > 0;)
        margin = std::min(margin, lost += gainOfFirst(i));
    lost = 0;
    for (std::size_t i = *placement.cutBefore; i < spans.size(); ++i)
        margin = std::min(margin, lost -= gainOfFirst(i));
    return share(margin / noiseOfSpan, 1);
}

} // namespace

double confidenceOf(const Placement &placement, const PlacementSearch &search, const std::vector<Span> &track,
                    const Evidence &evidence, const PlacementError &error) {
    const std::vector<std::vector<Span>> parts = partsOf(track, placement);
    const std::vector<NeighbourRatio> neighbours = neighboursOf(placement, search, track);
    double weakest = std::min(isAboveOtherRatios(placement, search, neighbours, track.size()),
                              isFine(parts, neighbours, error));
    for (const std::vector<Span> &part : parts) {
        weakest = std::min(weakest, standsOut(part, search));
        weakest = std::min(weakest, reachesItsEnds(part, evidence, search.noiseOfSpan()));
    }
    if (placement.cutBefore)
        weakest = std::min(weakest, cutIsClear(track, placement, evidence, search.noiseOfSpan()));
    return weakest;
}

} // namespace murvo::service
