// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

namespace murvo::service {

class Router;
class SettingsTable;

/// The languages on offer and what the learner has chosen. The table is borrowed and outlives the router; who
/// goes by it is told of each change.
void addSettingsRoutes(Router &router, SettingsTable &settings, const std::function<void()> &changed);

} // namespace murvo::service
