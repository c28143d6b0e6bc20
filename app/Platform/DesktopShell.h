// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace murvo::DesktopShell {

/// Opens the address in the user's own browser.
void openInBrowser(const QString &url);

} // namespace murvo::DesktopShell
