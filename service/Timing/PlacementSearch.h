// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Timing/Evidence.h"

#include <QtGlobal>

#include <atomic>
#include <optional>
#include <vector>

namespace murvo::service {

/// How much longer a second of the track lasts in the film.
struct RateRatio {
    qint32 numerator = 1;
    qint32 denominator = 1;

    [[nodiscard]] double value() const { return static_cast<double>(numerator) / denominator; }
    [[nodiscard]] bool isOne() const { return numerator == denominator; }
};

/// The spans at a film's rate.
[[nodiscard]] std::vector<Span> stretched(std::vector<Span> spans, RateRatio ratio);

/// One answer to where a track lies: from the span `cutBefore` on at another offset, with none at one offset.
struct Placement {
    RateRatio ratio;
    double offsetMs = 0;
    std::optional<std::size_t> cutBefore;
    double offsetBehindCutMs = 0;
    double fit = 0; ///< the sum of all spans' evidence
};

struct OffsetFit {
    double offsetMs = 0;
    double fit = 0;
};

/// What was seen when some spans were tried at every offset.
struct OffsetScan {
    std::vector<OffsetFit> best; ///< the best offsets that lie apart from each other, best first, never empty
    double noise = 0;            ///< how far fits scatter at offsets that mean nothing
};

/// Tries everything and keeps the best answers: the plain one and the one with a cut at each ratio.
///
/// Lives for one alignment on its caller's thread and borrows the evidence. Says which answer fits how well,
/// not whether it is to be believed.
class PlacementSearch {
  public:
    /// Reaches this far to both sides.
    static constexpr double longestOffsetMs = 630'000;
    /// Offsets nearer to each other than this are the same answer, measured less or more well.
    static constexpr double sameAnswerMs = 1'500;

    PlacementSearch(std::vector<Span> track, const Evidence &evidence, const std::atomic<bool> &isCancelled);

    /// False when cancelled.
    [[nodiscard]] bool run();

    /// The best plain answer at each ratio, that at ratio 1 first.
    [[nodiscard]] const std::vector<Placement> &plain() const { return _plain; }
    /// The best answers with a cut, at most one a ratio, maybe none.
    [[nodiscard]] const std::vector<Placement> &withCut() const { return _withCut; }
    /// How far the evidence of one span scatters at offsets that mean nothing.
    [[nodiscard]] double noiseOfSpan() const { return _noiseOfSpan; }
    /// The track's spans at that ratio tried at every offset.
    [[nodiscard]] OffsetScan scan(const std::vector<Span> &spans) const;

  private:
    struct CutGuess;

    [[nodiscard]] std::vector<float> fitsOf(const Span *spans, std::size_t count) const;
    [[nodiscard]] OffsetScan peaksOf(const std::vector<float> &fits, const std::vector<Span> &spans) const;
    [[nodiscard]] double noiseOf(const std::vector<float> &fits, const std::vector<Span> &spans,
                                 const std::vector<OffsetFit> &best) const;
    [[nodiscard]] std::optional<CutGuess> guessCut(const std::vector<std::vector<float>> &blocks) const;
    void searchAt(RateRatio ratio);
    void addPlain(RateRatio ratio, const std::vector<Span> &spans, const OffsetScan &found);
    void addCut(RateRatio ratio, const std::vector<Span> &spans, CutGuess guess);

    std::vector<Span> _track;
    const Evidence &_evidence;
    Evidence _coarse;
    const std::atomic<bool> &_isCancelled;
    std::vector<Placement> _plain;
    std::vector<Placement> _withCut;
    double _noiseOfSpan = 0;
};

} // namespace murvo::service
