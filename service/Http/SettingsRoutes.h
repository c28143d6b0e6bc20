// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace murvo::service {

class Router;
class SettingsTable;

/// The languages on offer and what the learner has chosen. The table is borrowed and outlives the router.
void addSettingsRoutes(Router &router, SettingsTable &settings);

} // namespace murvo::service
