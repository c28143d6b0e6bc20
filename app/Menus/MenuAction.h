// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAction>
#include <QKeySequence>
#include <QMenu>

namespace murvo {

/// Adds an action whose key works wherever in the program the keys go: the page's window has them during a
/// film, and the menu bar, with which its actions would hide, is gone in full screen; window keeps them
/// alive.
inline QAction *addMenuAction(QMenu &menu, QWidget &window, const QString &text, const QKeySequence &key) {
    QAction *action = menu.addAction(text);
    action->setShortcut(key);
    action->setShortcutContext(Qt::ApplicationShortcut);
    window.addAction(action);
    return action;
}

} // namespace murvo
