// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/VocabularyParts.h"

namespace murvo::service {

class Router;

/// The words of a film, the learner's level, and the search through the lines of all films.
void addFilmWordRoutes(Router &router, const VocabularyParts &parts);

} // namespace murvo::service
