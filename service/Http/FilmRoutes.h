// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace murvo::service {

class ChangeCounts;
class ChoiceTable;
class FilmLines;
class FilmTable;
class InsideSubtitles;
class Router;
class SettingsTable;
class SubtitleLookup;
class SubtitleTable;
class TimingTable;

/// What the routes about one film work with. All borrowed, all outlive the router.
struct FilmRouteParts {
    FilmTable &films;
    SubtitleTable &subtitles;
    ChoiceTable &choices;
    TimingTable &timings;
    SettingsTable &settings;
    SubtitleLookup &lookup;
    InsideSubtitles &inside;
    FilmLines &lines;
    ChangeCounts &changes; ///< by the film's id
};

/// The lookup by hash and size, and what the player page asks of a film: lines, its choice of tracks, files
/// that the learner adds, sound tracks.
void addFilmRoutes(Router &router, const FilmRouteParts &parts);

} // namespace murvo::service
