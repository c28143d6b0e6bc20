// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/LearnerFile.h"

#include <functional>

namespace murvo::service {

class Router;

/// All of the learner as one file, out and in. The file is borrowed and outlives the router; hasReplaced
/// tells all that another store has taken the place of the one before.
struct LearnerRouteParts {
    LearnerFile &file;
    LearnerFile::Taking taking;
    std::function<void()> hasReplaced;
};

void addLearnerRoutes(Router &router, const LearnerRouteParts &parts);

} // namespace murvo::service
