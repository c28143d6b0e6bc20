// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace murvo::service {

class Router;

/// The pages and their files: a closed table of what is built into the program, read once, here.
void addPageRoutes(Router &router);

} // namespace murvo::service
