// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/VocabularyParts.h"

namespace murvo::service {

class Review;
class Router;

/// The words that come up for review, and what the learner says of them. The review is borrowed and outlives
/// the router.
void addReviewRoutes(Router &router, const VocabularyParts &parts, Review &review);

} // namespace murvo::service
