// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Timing/Evidence.h"
#include "Timing/PlacementSearch.h"

#include <vector>

namespace murvo::service {

/// What is left between a placement and the evidence when both are looked at closely, and how well it is
/// known.
struct PlacementError {
    std::vector<double> offsetMs;      ///< of each part: what its offset lacks
    std::vector<double> offsetErrorMs; ///< standard error of each
    double driftMs = 0;                ///< from the middle to an end of the whole track
    double driftErrorMs = 0;           ///< standard error
    /// For each neighbouring ratio: how much better the placement's own fits, in standard errors of that.
    std::vector<double> aboveNeighbours;
};

/// A ratio so near that the track, moved to the middle, fits nearly as well at it.
struct NeighbourRatio {
    RateRatio ratio;
    double factor = 1;  ///< of the placement's own ratio
    double driftMs = 0; ///< from the middle to an end of the whole track
};

[[nodiscard]] std::vector<NeighbourRatio>
neighboursOf(const Placement &placement, const PlacementSearch &search, const std::vector<Span> &track);

/// The parts are stretched and moved to where the placement puts them, one or two.
[[nodiscard]] PlacementError measureError(const std::vector<std::vector<Span>> &parts,
                                          const std::vector<NeighbourRatio> &neighbours,
                                          const Evidence &evidence);

/// How far everything that must hold for the placement to be right is above what it needs; the weakest of
/// them, as Alignment::confidence describes it. The error is what measureError found for it.
[[nodiscard]] double confidenceOf(const Placement &placement, const PlacementSearch &search,
                                  const std::vector<Span> &track, const Evidence &evidence,
                                  const PlacementError &error);

/// The track's spans at the placement's ratio, those before and those from the cut on, at their offsets.
[[nodiscard]] std::vector<std::vector<Span>> partsOf(const std::vector<Span> &track,
                                                     const Placement &placement);

} // namespace murvo::service
