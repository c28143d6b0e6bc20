// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace murvo::service {

class Router;
class Speaker;

/// A word or a line as a sound, and how it is pronounced. The speaker is borrowed and outlives the router.
void addSpeechRoutes(Router &router, Speaker &speaker);

} // namespace murvo::service
