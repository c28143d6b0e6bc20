// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace murvo::service {

class FilmHandover;
class FilmStills;
class FilmTable;
class FilmWords;
class Router;
class WatchingTable;

/// What the routes about the watched films work with. All borrowed, all outlive the router.
struct ShelfRouteParts {
    FilmTable &films;
    WatchingTable &watching;
    FilmWords &words;
    FilmStills &stills;
    FilmHandover &handover;
};

/// The films that the learner has watched, and how to go on with one.
void addShelfRoutes(Router &router, const ShelfRouteParts &parts);

} // namespace murvo::service
