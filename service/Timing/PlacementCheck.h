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
    double driftErrorMs = 0;           ///< standard error; infinite where the track is too short to tell
};

/// The parts are stretched and moved to where the placement puts them, one or two.
[[nodiscard]] PlacementError measureError(const std::vector<std::vector<Span>> &parts,
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
