// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/LearnerFile.h"
#include "Store/SavedFiles.h"

#include <functional>

namespace murvo::service {

class Router;

/// All of the learner as one file, out and in. The files are borrowed and outlive the router; hasReplaced
/// tells all that another store has taken the place of the one before.
struct LearnerRouteParts {
    LearnerFile &file;
    const SavedFiles &savedFiles;
    LearnerFile::Taking taking;
    std::function<void()> hasReplaced;
};

void addLearnerRoutes(Router &router, const LearnerRouteParts &parts);

} // namespace murvo::service
