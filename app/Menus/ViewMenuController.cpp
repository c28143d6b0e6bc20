// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Menus/ViewMenuController.h"

#include "app/Menus/MenuAction.h"

#include <QMenuBar>
#include <QShortcut>

namespace murvo {

ViewMenuController::ViewMenuController(QMenuBar &menuBar, QWidget &window)
    : QObject(&window)
    , _fullScreenAction(addMenuAction(*menuBar.addMenu(tr("&View")), window, tr("&Full Screen"), tr("F11")))
    , _leaveShortcut(new QShortcut(Qt::Key_Escape, &window)) {
    _fullScreenAction->setCheckable(true);
    connect(_fullScreenAction, &QAction::triggered, this, &ViewMenuController::fullScreenToggled);
    // In full screen the home page's Escape leaves it; a film's window sees to its own.
    _leaveShortcut->setEnabled(false);
    connect(_leaveShortcut, &QShortcut::activated, this, &ViewMenuController::fullScreenToggled);
}

void ViewMenuController::setFullScreen(bool isFullScreen) {
    _fullScreenAction->setChecked(isFullScreen);
    _leaveShortcut->setEnabled(isFullScreen);
}

} // namespace murvo
