// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace murvo::service {

class Router;
class SettingsTable;
class WordLookup;

/// What a word of a line means. Borrows everything, for as long as the router answers.
void addDictionaryRoutes(Router &router, WordLookup &lookup, SettingsTable &settings);

} // namespace murvo::service
