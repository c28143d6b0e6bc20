// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace murvo::service {

class PendingFilms;
class Router;

/// What the home page asks besides the settings. The films are borrowed and outlive the router.
void addHomeRoutes(Router &router, PendingFilms &films);

} // namespace murvo::service
