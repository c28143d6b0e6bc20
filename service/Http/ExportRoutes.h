// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Export/WordCards.h"

namespace murvo::service {

class AnkiSender;
class Database;
class PackageExport;
class Router;
class SettingsTable;

/// What the export of words works with. All borrowed, all outlive the router.
struct ExportRouteParts {
    Database &database;
    SettingsTable &settings;
    PackageExport &package;
    AnkiSender &sender;
    WordFacts facts;
};

/// The learner's words for other programs: as lists, as an Anki package, and sent to Anki.
void addExportRoutes(Router &router, const ExportRouteParts &parts);

} // namespace murvo::service
