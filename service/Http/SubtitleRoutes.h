// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace murvo::service {

class ChangeCounts;
class FilmLines;
class FilmTable;
class Router;
class SubtitleTable;
class TimingTable;
class TrackSync;

/// What the routes about one subtitle work with. All borrowed, all outlive the router.
struct SubtitleRouteParts {
    FilmTable &films;
    SubtitleTable &subtitles;
    TimingTable &timings;
    FilmLines &lines;
    TrackSync &sync;
    ChangeCounts &changes; ///< by the film's id
};

/// Download and upload of subtitle files; the lines of one, its timing and its encoding.
void addSubtitleRoutes(Router &router, const SubtitleRouteParts &parts);

} // namespace murvo::service
