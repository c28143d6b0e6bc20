// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QRect>
#include <QString>
#include <QStringList>

namespace murvo {
class WebViewController;
}

namespace murvo::test {

/// Looks a page over with axe-core, as it stands now: what it finds serious or critical, a sentence each;
/// empty when it finds nothing. "axe-core: ..." when it could not look. Main thread; waits for the page.
[[nodiscard]] QStringList faultsOf(WebViewController &page);

/// Takes a picture of a rectangle of the screen (screen coordinates) for the gallery: NAME.png in the folder
/// that the environment variable MURVO_GALLERY names. Does nothing without it.
void photograph(const QString &name, const QRect &rectangle);

} // namespace murvo::test
