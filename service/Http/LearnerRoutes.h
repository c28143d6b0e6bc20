// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

namespace murvo::service {

class LearnerFile;
class Router;

/// All of the learner as one file, out and in. The file is borrowed and outlives the router; the calls tell
/// those who work on the store by themselves to stop before another one takes its place, and that it has.
struct LearnerRouteParts {
    LearnerFile &file;
    std::function<void()> beforeReplacing;
    std::function<void()> afterReplacing;
};

void addLearnerRoutes(Router &router, const LearnerRouteParts &parts);

} // namespace murvo::service
