// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QPoint>
#include <QString>
#include <QStringList>

class QRect;
class QWidget;

namespace murvo::test {

/// The desktop seen and touched from outside, with the program xdotool and the picture of the screen.

/// Standard output of the program; fails the test when it cannot be run or exits with another status than 0.
QString run(const QString &program, const QStringList &arguments);

/// Real pointer and key events, at screen positions.
void clickAt(const QPoint &position, int times = 1);
void controlDoubleClickAt(const QPoint &position);
/// A key by its X name, such as "Escape", to the window that has the keys.
void pressKey(const QString &key);

/// What the screen shows there, in every window and whoever drew it.
[[nodiscard]] QColor screenColor(const QPoint &position);

/// Types the text into the field that has the keys, in place of what stands there.
void typeInstead(const QString &text);

/// Where the window lies on the screen, without a frame, as the X server knows it.
[[nodiscard]] QRect screenRect(const QWidget &window);

} // namespace murvo::test
