// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Menus/ViewMenuController.h"

#include "app/Menus/MenuAction.h"

#include <QMenuBar>

namespace murvo {

ViewMenuController::ViewMenuController(QMenuBar &menuBar, QWidget &window)
    : QObject(&window)
    , _fullScreenAction(addMenuAction(*menuBar.addMenu(tr("&View")), window, tr("&Full Screen"), tr("F11"))) {
    _fullScreenAction->setCheckable(true);
    connect(_fullScreenAction, &QAction::triggered, this, &ViewMenuController::fullScreenToggled);
}

void ViewMenuController::setFullScreen(bool isFullScreen) {
    _fullScreenAction->setChecked(isFullScreen);
}

} // namespace murvo
