// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>

namespace murvo::service {

class FilmTable;
class Router;

/// What is heard and seen at a line of a film. Both are borrowed and outlive the router; the flag ends what
/// is being cut.
void addClipRoutes(Router &router, FilmTable &films, const std::atomic<bool> &isEnding);

} // namespace murvo::service
