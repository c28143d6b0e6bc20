// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/XWindow.h"

#include <QImage>
#include <QList>
#include <QUrl>

namespace murvo::test::Screen {

/// What is drawn there at this moment, in every window and whoever drew it.
[[nodiscard]] QImage picture(const QRect &area);
/// How many colours there are in the area.
[[nodiscard]] qsizetype colorCount(const QRect &area);
/// Whether the picture is drawn somewhere in the area, pixel for pixel.
[[nodiscard]] bool shows(const QImage &piece, const QRect &area);

/// The loader's line of text as it is drawn, at least where it has ink.
[[nodiscard]] QImage loaderText(const QString &text);
/// A line of text in a dialog.
[[nodiscard]] QImage dialogText(const QString &text);
/// Whether the window is a warning with the message, the informative text and the one button OK.
[[nodiscard]] bool isWarning(const XWindow &window, const QString &message, const QString &informativeText);

/// Drags the addresses out of a window of this program and drops them at the place, with the real mouse.
/// Whether they were taken.
bool drop(const QList<QUrl> &urls, const QPoint &place);

} // namespace murvo::test::Screen
