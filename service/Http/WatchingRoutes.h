// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace murvo::service {

class FilmTable;
class Router;
class WatchingTable;

/// How far a film was watched, and how. Both tables are borrowed and outlive the router.
void addWatchingRoutes(Router &router, FilmTable &films, WatchingTable &watching);

} // namespace murvo::service
