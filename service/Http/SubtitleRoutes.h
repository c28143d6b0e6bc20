// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace murvo::service {

class FilmLines;
class FilmTable;
class Router;
class SubtitleTable;

/// What the routes about one subtitle work with. All borrowed, all outlive the router.
struct SubtitleRouteParts {
    FilmTable &films;
    SubtitleTable &subtitles;
    FilmLines &lines;
};

/// Download and upload of subtitle files, and the lines of one file.
void addSubtitleRoutes(Router &router, const SubtitleRouteParts &parts);

} // namespace murvo::service
