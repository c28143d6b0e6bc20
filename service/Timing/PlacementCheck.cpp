// SPDX-License-Identifier: GPL-3.0-or-later
#include "Timing/PlacementCheck.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

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

    void subtract(const Grid &other) {
        for (std::size_t i = 0; i < _fits.size(); ++i)
            _fits[i] -= other._fits[i];
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
        return static_cast<std::size_t>(drift * offsets + offset);
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

double bestDriftMs(const std::vector<Grid> &parts) {
    std::array<double, Grid::drifts> fits{};
    for (int drift = 0; drift < Grid::drifts; ++drift) {
        for (const Grid &part : parts)
            fits[static_cast<std::size_t>(drift)] += part.at(drift, part.bestOffset(drift));
    }
    const auto best = static_cast<std::size_t>(std::max_element(fits.begin(), fits.end()) - fits.begin());
    double step = static_cast<double>(best) - Grid::driftReach;
    if (best > 0 && best + 1 < fits.size())
        step += topBetween(fits[best - 1], fits[best], fits[best + 1]);
    return step * Grid::driftStepMs;
}

/// Standard error of a figure from what it becomes without each of some groups.
double jackknifeError(const std::vector<double> &without) {
    double mean = 0;
    for (const double value : without)
        mean += value / static_cast<double>(without.size());
    double squares = 0;
    for (const double value : without)
        squares += (value - mean) * (value - mean);
    return std::sqrt(squares * static_cast<double>(without.size() - 1) / static_cast<double>(without.size()));
}

double halfLengthMs(const std::vector<std::vector<Span>> &parts) {
    double longest = 0;
    for (const std::vector<Span> &part : parts)
        longest += part.back().startMs - part.front().startMs;
    return std::max(longest / 2, 1.0);
}

/// Every span's share in the grids of its part and group; groups are interleaved.
constexpr std::size_t groupCount = 10;

std::vector<Grid> gridsOf(const std::vector<Span> &part, double halfMs, const Evidence &evidence) {
    std::vector<Grid> groups(groupCount);
    const double middleMs = (part.front().startMs + part.back().startMs) / 2;
    for (std::size_t i = 0; i < part.size(); ++i)
        groups[i % groupCount].add(part[i], (part[i].startMs - middleMs) / halfMs, evidence);
    return groups;
}

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

PlacementError measureError(const std::vector<std::vector<Span>> &parts, const Evidence &evidence) {
    const double halfMs = halfLengthMs(parts);
    std::vector<Grid> wholes(parts.size());
    std::vector<std::vector<Grid>> groups;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        groups.push_back(gridsOf(parts[i], halfMs, evidence));
        for (const Grid &group : groups.back())
            wholes[i].add(group);
    }
    PlacementError error;
    std::vector<double> drifts;
    std::vector<std::vector<double>> offsets(parts.size());
    for (std::size_t group = 0; group < groupCount; ++group) {
        std::vector<Grid> without = wholes;
        for (std::size_t i = 0; i < parts.size(); ++i) {
            without[i].subtract(groups[i][group]);
            offsets[i].push_back(bestOffsetMs(without[i]));
        }
        drifts.push_back(bestDriftMs(without));
    }
    error.driftMs = bestDriftMs(wholes);
    error.driftErrorMs = jackknifeError(drifts);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        error.offsetMs.push_back(bestOffsetMs(wholes[i]));
        error.offsetErrorMs.push_back(jackknifeError(offsets[i]));
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
constexpr double allowedErrorMs = 100;

double standsOut(const std::vector<Span> &part, const PlacementSearch &search) {
    const OffsetScan scan = search.scan(part);
    if (std::abs(scan.best[0].offsetMs) > 300) // the part itself would rather be elsewhere
        return 0;
    const double above = (scan.best[0].fit - scan.best[1].fit) / scan.noise;
    return std::min(share(scan.best[0].fit / scan.noise, neededNoises), share(above, neededNoisesAbove));
}

double middleMs(const std::vector<Span> &track, const Placement &placement) {
    const double trackMs = (track.front().startMs + track.back().startMs) / 2;
    return trackMs * placement.ratio.value() + placement.offsetMs;
}

/// Above every plain answer at another ratio. Ratios that lie next to each other are told apart by the drift.
double isAboveOtherRatios(const Placement &placement, const PlacementSearch &search,
                          const std::vector<Span> &track) {
    const double noise = search.noiseOfSpan() * std::sqrt(static_cast<double>(track.size()));
    double weakest = 1;
    for (const Placement &other : search.plain()) {
        const bool isNear =
            std::abs(other.ratio.value() / placement.ratio.value() - 1) < 0.002 &&
            std::abs(middleMs(track, other) - middleMs(track, placement)) < PlacementSearch::sameAnswerMs;
        if (!isNear)
            weakest = std::min(weakest, share((placement.fit - other.fit) / noise, neededNoisesAbove));
    }
    return weakest;
}

/// The next ratio differs by a thousandth. Where that is more than can be borne, the drift must exclude it.
double isFine(const std::vector<std::vector<Span>> &parts, const PlacementError &error) {
    const double halfMs = halfLengthMs(parts);
    const double nextMs = 0.001 * halfMs;
    const double driftMs = std::abs(error.driftMs);
    double ratioShare = 1;
    double bearableMs = 0;
    if (nextMs < 50)
        bearableMs = nextMs;
    else
        ratioShare =
            share(nextMs * (nextMs - 2 * driftMs) / (2 * error.driftErrorMs * error.driftErrorMs), 4);
    double weakest = ratioShare;
    for (const double offsetErrorMs : error.offsetErrorMs)
        weakest = std::min(weakest, allowedErrorMs / (allowedErrorMs + bearableMs + 3 * offsetErrorMs));
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
    double weakest = std::min(isAboveOtherRatios(placement, search, track), isFine(parts, error));
    for (const std::vector<Span> &part : parts) {
        weakest = std::min(weakest, standsOut(part, search));
        weakest = std::min(weakest, reachesItsEnds(part, evidence, search.noiseOfSpan()));
    }
    if (placement.cutBefore)
        weakest = std::min(weakest, cutIsClear(track, placement, evidence, search.noiseOfSpan()));
    return weakest;
}

} // namespace murvo::service
