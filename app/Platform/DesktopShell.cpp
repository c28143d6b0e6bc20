// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Platform/DesktopShell.h"

#include "app/Platform/Log.h"

#include <QDesktopServices>
#include <QUrl>

namespace murvo::DesktopShell {

void openInBrowser(const QString &url) {
    if (!QDesktopServices::openUrl(QUrl(url)))
        qCWarning(logApp) << "No browser took the address" << url;
}

} // namespace murvo::DesktopShell
