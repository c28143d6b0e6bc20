// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QSize>
#include <QWindow>

namespace murvo {

/// Whether translucent windows show what lies beneath them: a compositing manager runs.
[[nodiscard]] bool isDesktopComposited();

/// Asks the window manager to raise the window and give it the keys, on the user's own wish: a plain request
/// is refused when the user is busy elsewhere.
void activateForUser(QWindow &window);

/// Tells the desktop that a start of this program that will show no window is over: its waiting pointer goes.
/// The identifier is what the launcher put into DESKTOP_STARTUP_ID; nothing happens without one.
void endStartupNotification(const QByteArray &identifier);

/// Asks the window manager to keep the shape of the window's content while the user resizes it. The part of
/// the window that is not content (its menu bar) is base, and stays as it is. An empty aspect lifts the wish.
/// Qt has no call for it and writes the same hints itself now and then: ask again when they have changed.
/// Does nothing on platforms other than X11.
void setContentAspectHint(const QWindow &window, const QSize &aspect, const QSize &base);

/// Whether the native event, as QWidget::nativeEvent gets it, says that the window's hints have changed.
[[nodiscard]] bool isSizeHintsChange(const QWindow &window, const void *nativeEvent);

/// Whether it says that the window manager has given the window another frame, or has told for the first time
/// how wide it is.
[[nodiscard]] bool isFrameChange(const QWindow &window, const void *nativeEvent);

} // namespace murvo
