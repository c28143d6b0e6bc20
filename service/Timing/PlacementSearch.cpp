// SPDX-License-Identifier: GPL-3.0-or-later
#include "Timing/PlacementSearch.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <span>
#include <utility>

namespace murvo::service {

namespace {

constexpr int coarseFactor = 4;
constexpr int coarseFrameMs = Evidence::fineFrameMs * coarseFactor;
constexpr int lagReach = static_cast<int>(PlacementSearch::longestOffsetMs / coarseFrameMs);
constexpr std::size_t lagCount = 2 * lagReach + 1;
// Shorter ends of a track prove nothing of their own.
constexpr std::size_t fewestSpansOfPart = 4;
constexpr std::size_t mostBlocks = 24;
constexpr double smallestCutMs = 300;

double offsetOf(std::size_t lag) {
    return static_cast<double>(static_cast<int>(lag) - lagReach) * coarseFrameMs;
}

/// The rates that films are sold at: a track made for one of them is stretched or squeezed on a film of
/// another.
std::vector<RateRatio> filmRateRatios() {
    struct FrameRate {
        qint32 numerator;
        qint32 denominator;
    };
    constexpr std::array<FrameRate, 4> rates{{{24'000, 1'001}, {24, 1}, {25, 1}, {30'000, 1'001}}};
    std::vector<RateRatio> ratios{RateRatio{}};
    for (const FrameRate &track : rates) {
        for (const FrameRate &film : rates) {
            const qint32 numerator = track.numerator * film.denominator;
            const qint32 denominator = track.denominator * film.numerator;
            const qint32 common = std::gcd(numerator, denominator);
            if (numerator != denominator)
                ratios.push_back({numerator / common, denominator / common});
        }
    }
    return ratios;
}

/// fits[lag] += values[frame + lag - lagReach], the outermost values standing for everything beyond them.
void addShifted(std::vector<float> &fits, const std::vector<float> &values, double timeMs) {
    const auto frame = static_cast<std::ptrdiff_t>(std::lround(timeMs / coarseFrameMs));
    const auto size = static_cast<std::ptrdiff_t>(values.size());
    const auto lags = static_cast<std::ptrdiff_t>(lagCount);
    const std::ptrdiff_t from = std::clamp<std::ptrdiff_t>(lagReach - frame, 0, lags);
    const std::ptrdiff_t to = std::clamp<std::ptrdiff_t>(size + lagReach - frame, from, lags);
    float *const out = fits.data();
    for (std::ptrdiff_t lag = 0; lag < from; ++lag)
        out[lag] += values.front();
    const float *const in = values.data() + (frame - lagReach + from);
    for (std::ptrdiff_t i = 0; i < to - from; ++i)
        out[from + i] += in[i];
    for (std::ptrdiff_t lag = to; lag < lags; ++lag)
        out[lag] += values.back();
}

void addAll(std::vector<float> &to, const std::vector<float> &values) {
    for (std::size_t i = 0; i < to.size(); ++i)
        to[i] += values[i];
}

std::size_t bestLag(const std::vector<float> &fits) {
    return static_cast<std::size_t>(std::distance(fits.begin(), std::max_element(fits.begin(), fits.end())));
}

double fitAt(std::span<const Span> spans, const Evidence &evidence, double offsetMs) {
    double sum = 0;
    for (const Span &span : spans)
        sum += evidence.fitOf({span.startMs + offsetMs, span.endMs + offsetMs});
    return sum;
}

OffsetFit refined(std::span<const Span> spans, const Evidence &evidence, double aroundMs, double reachMs) {
    OffsetFit best{aroundMs, -std::numeric_limits<double>::infinity()};
    const int steps = static_cast<int>(reachMs / Evidence::fineFrameMs);
    for (int step = -steps; step <= steps; ++step) {
        const double offsetMs = aroundMs + step * Evidence::fineFrameMs;
        const double fit = fitAt(spans, evidence, offsetMs);
        if (fit > best.fit)
            best = {offsetMs, fit};
    }
    return best;
}

} // namespace

struct PlacementSearch::CutGuess {
    std::size_t beforeBlock = 0;
    double offsetMs = 0;
    double offsetBehindMs = 0;
};

std::vector<Span> stretched(std::vector<Span> spans, RateRatio ratio) {
    for (Span &span : spans) {
        span.startMs *= ratio.value();
        span.endMs *= ratio.value();
    }
    return spans;
}

PlacementSearch::PlacementSearch(std::vector<Span> track, const Evidence &evidence,
                                 const std::atomic<bool> &isCancelled)
    : _track(std::move(track))
    , _evidence(evidence)
    , _coarse(evidence.coarser(coarseFactor))
    , _isCancelled(isCancelled) {}

bool PlacementSearch::run() {
    for (const RateRatio ratio : filmRateRatios()) {
        searchAt(ratio);
        if (_isCancelled)
            return false;
    }
    return true;
}

OffsetScan PlacementSearch::scan(const std::vector<Span> &spans) const {
    return peaksOf(fitsOf(spans.data(), spans.size()), spans);
}

std::vector<float> PlacementSearch::fitsOf(const Span *spans, std::size_t count) const {
    std::vector<float> fits(lagCount, 0.0F);
    for (std::size_t i = 0; i < count && !_isCancelled; ++i) {
        addShifted(fits, _coarse.atStart, spans[i].startMs);
        addShifted(fits, _coarse.atEnd, spans[i].endMs);
    }
    return fits;
}

OffsetScan PlacementSearch::peaksOf(const std::vector<float> &fits, const std::vector<Span> &spans) const {
    constexpr std::size_t kept = 3;
    constexpr auto apart = static_cast<std::size_t>(sameAnswerMs / coarseFrameMs);
    OffsetScan result;
    std::vector<float> rest = fits;
    for (std::size_t i = 0; i < kept; ++i) {
        const std::size_t lag = bestLag(rest);
        result.best.push_back({offsetOf(lag), static_cast<double>(rest[lag])});
        const std::size_t from = lag > apart ? lag - apart : 0;
        const std::size_t to = std::min(lagCount, lag + apart + 1);
        std::fill(rest.begin() + static_cast<std::ptrdiff_t>(from),
                  rest.begin() + static_cast<std::ptrdiff_t>(to), std::numeric_limits<float>::lowest());
    }
    result.noise = noiseOf(fits, spans, result.best);
    return result;
}

/// Only offsets that lay half of the spans or more onto the film say how far the fits of so many scatter.
double PlacementSearch::noiseOf(const std::vector<float> &fits, const std::vector<Span> &spans,
                                const std::vector<OffsetFit> &best) const {
    std::vector<int> changes(lagCount + 1, 0);
    const auto size = static_cast<std::ptrdiff_t>(_coarse.atStart.size());
    const auto lags = static_cast<std::ptrdiff_t>(lagCount);
    for (const Span &span : spans) {
        const auto frame = static_cast<std::ptrdiff_t>(std::lround(span.startMs / coarseFrameMs));
        ++changes[static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(lagReach - frame, 0, lags))];
        --changes[static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(size + lagReach - frame, 0, lags))];
    }
    double squares = 0;
    double counted = 0;
    int inside = 0;
    for (std::size_t lag = 0; lag < lagCount; ++lag) {
        inside += changes[lag];
        const double offsetMs = offsetOf(lag);
        const bool isAnswer = std::abs(offsetMs - best[0].offsetMs) < sameAnswerMs ||
                              std::abs(offsetMs - best[1].offsetMs) < sameAnswerMs;
        if (isAnswer || 2 * static_cast<std::size_t>(std::max(inside, 0)) < spans.size())
            continue;
        squares += static_cast<double>(fits[lag]) * static_cast<double>(fits[lag]);
        ++counted;
    }
    return counted > 0 ? std::sqrt(squares / counted) + 1e-6 : std::numeric_limits<double>::infinity();
}

std::optional<PlacementSearch::CutGuess>
PlacementSearch::guessCut(const std::vector<std::vector<float>> &blocks) const {
    const std::size_t count = blocks.size();
    std::vector<OffsetFit> behind(count);
    std::vector<float> sum(lagCount, 0.0F);
    for (std::size_t i = count; i-- > 1;) {
        addAll(sum, blocks[i]);
        const std::size_t lag = bestLag(sum);
        behind[i] = {offsetOf(lag), static_cast<double>(sum[lag])};
    }
    std::fill(sum.begin(), sum.end(), 0.0F);
    std::optional<CutGuess> best;
    double bestFit = -std::numeric_limits<double>::infinity();
    for (std::size_t i = 1; i < count; ++i) {
        addAll(sum, blocks[i - 1]);
        const std::size_t lag = bestLag(sum);
        const double fit = static_cast<double>(sum[lag]) + behind[i].fit;
        if (fit > bestFit && std::abs(offsetOf(lag) - behind[i].offsetMs) >= smallestCutMs) {
            bestFit = fit;
            best = CutGuess{i, offsetOf(lag), behind[i].offsetMs};
        }
    }
    return best;
}

void PlacementSearch::searchAt(RateRatio ratio) {
    const std::vector<Span> spans = stretched(_track, ratio);
    const std::size_t blockCount = std::clamp<std::size_t>(spans.size() / fewestSpansOfPart, 1, mostBlocks);
    std::vector<std::vector<float>> blocks;
    std::vector<float> whole(lagCount, 0.0F);
    for (std::size_t i = 0; i < blockCount; ++i) {
        const std::size_t from = i * spans.size() / blockCount;
        const std::size_t to = (i + 1) * spans.size() / blockCount;
        blocks.push_back(fitsOf(spans.data() + from, to - from));
        addAll(whole, blocks.back());
    }
    if (_isCancelled)
        return;
    addPlain(ratio, spans, peaksOf(whole, spans));
    if (std::optional<CutGuess> guess = guessCut(blocks)) {
        guess->beforeBlock = guess->beforeBlock * spans.size() / blockCount;
        addCut(ratio, spans, *guess);
    }
}

void PlacementSearch::addPlain(RateRatio ratio, const std::vector<Span> &spans, const OffsetScan &found) {
    const OffsetFit best = refined(spans, _evidence, found.best.front().offsetMs, 100);
    _plain.push_back({ratio, best.offsetMs, std::nullopt, 0, best.fit});
    if (ratio.isOne())
        _noiseOfSpan = found.noise / std::sqrt(static_cast<double>(spans.size()));
}

/// The two offsets say best where the cut is, and the cut which spans the offsets are measured from.
void PlacementSearch::addCut(RateRatio ratio, const std::vector<Span> &spans, CutGuess guess) {
    if (spans.size() < 2 * fewestSpansOfPart)
        return;
    std::size_t cutBefore = guess.beforeBlock;
    Placement placement{ratio, guess.offsetMs, cutBefore, guess.offsetBehindMs, 0};
    for (int round = 0; round < 3; ++round) {
        const std::span<const Span> all(spans);
        const OffsetFit first = refined(all.first(cutBefore), _evidence, placement.offsetMs, 100);
        const OffsetFit second = refined(all.subspan(cutBefore), _evidence, placement.offsetBehindCutMs, 100);
        placement.offsetMs = first.offsetMs;
        placement.offsetBehindCutMs = second.offsetMs;
        placement.cutBefore = cutBefore;
        placement.fit = first.fit + second.fit;

        double gain = 0; // of the spans up to here at the first offset over the second
        double bestGain = -std::numeric_limits<double>::infinity();
        for (std::size_t i = 0; i + fewestSpansOfPart <= spans.size(); ++i) {
            if (i >= fewestSpansOfPart && gain > bestGain) {
                bestGain = gain;
                cutBefore = i;
            }
            gain += fitAt(all.subspan(i, 1), _evidence, first.offsetMs) -
                    fitAt(all.subspan(i, 1), _evidence, second.offsetMs);
        }
    }
    if (std::abs(placement.offsetMs - placement.offsetBehindCutMs) >= smallestCutMs)
        _withCut.push_back(placement);
}

} // namespace murvo::service
