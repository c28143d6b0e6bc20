// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace murvo::service {

class FilmLines;
class FilmTable;
class Router;
class SettingsTable;
class SubtitleLookup;
class SubtitleTable;

/// What the routes about one film work with. All borrowed, all outlive the router.
struct FilmRouteParts {
    FilmTable &films;
    SubtitleTable &subtitles;
    SettingsTable &settings;
    SubtitleLookup &lookup;
    FilmLines &lines;
};

/// The lookup by hash and size, and what the player page asks of a film: lines, tracks, sound tracks.
void addFilmRoutes(Router &router, const FilmRouteParts &parts);

} // namespace murvo::service
