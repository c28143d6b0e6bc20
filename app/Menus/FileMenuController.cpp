// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Menus/FileMenuController.h"

#include "app/Menus/AddressDialog.h"
#include "app/Menus/FileChooser.h"
#include "app/Menus/MenuAction.h"

#include <QMenuBar>

namespace murvo {

FileMenuController::FileMenuController(QMenuBar &menuBar, QWidget &window)
    : QObject(&window)
    , _window(window) {
    QMenu &menu = *menuBar.addMenu(tr("&File"));
    connect(addMenuAction(menu, window, tr("&Open…"), QKeySequence::Open), &QAction::triggered, this,
            &FileMenuController::open);
    connect(addMenuAction(menu, window, tr("Open &URL…"), tr("Ctrl+U")), &QAction::triggered, this,
            &FileMenuController::openUrl);
    menu.addSeparator();
    connect(addMenuAction(menu, window, tr("&Quit"), QKeySequence::Quit), &QAction::triggered, this,
            &FileMenuController::quitChosen);
}

void FileMenuController::open() {
    if (const QString path = FileChooser::chooseFilm(FileChooser::parentAbove(_window)); !path.isNull())
        Q_EMIT videoChosen(path);
}

void FileMenuController::openUrl() {
    AddressDialog dialog(FileChooser::parentAbove(_window));
    if (dialog.exec() == QDialog::Accepted)
        Q_EMIT urlChosen(dialog.address());
}

} // namespace murvo
