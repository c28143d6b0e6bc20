// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LearnerFixture.h"
#include "support/MarkedFilm.h"

#include <chrono>
#include <optional>

namespace murvo::test {

/// A learner with a film whose picture tells where it stands. Main thread.
class Practice : public Learner {
  protected:
    /// The film with so many lines, playing.
    void playMarked(int lineCount);
    /// The film time of the picture on the screen.
    [[nodiscard]] double shownMs() const;
    /// The film time at which the film has paused by itself, once its picture rests; nothing when it does
    /// not.
    [[nodiscard]] std::optional<double> nextPauseMs(std::chrono::milliseconds limit) const;
    void goOn() const;

    std::optional<MarkedFilm> marked;
};

} // namespace murvo::test
