// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/VocabularyParts.h"

namespace murvo::service {

class Router;

/// The words that the learner has marked: one, a list, their statuses, glosses and lines.
void addWordRoutes(Router &router, const VocabularyParts &parts);

} // namespace murvo::service
