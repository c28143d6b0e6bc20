// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace murvo::service {

class ChangeCounts;
class Router;

/// What the home page asks besides the settings. The count is borrowed and outlives the router.
void addHomeRoutes(Router &router, ChangeCounts &pendingFilms);

} // namespace murvo::service
