// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QWebEngineProfile;

namespace murvo::PageScheme {

/// Makes the web engine know the scheme "app", by which pages speak to the player; without that it would
/// swallow such navigations unseen. Call before the application object is made.
void registerScheme();

/// A second fence behind the navigation policy: whatever of the scheme would still be loaded is refused.
/// The handler belongs to the profile.
void install(QWebEngineProfile &profile);

} // namespace murvo::PageScheme
