// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

namespace murvo::service {

class Dictionaries;
class PageSettings;
class Router;
class SettingsTable;

/// The languages on offer and what the learner has chosen. Table and dictionaries are borrowed and outlive
/// the router; the call tells that a setting of Anki's was written.
void addSettingsRoutes(Router &router, SettingsTable &settings, const Dictionaries &dictionaries,
                       const std::function<void()> &ankiChanged);

/// What the pages keep. The table is borrowed and outlives the router.
void addPageSettingsRoutes(Router &router, PageSettings &settings);

} // namespace murvo::service
