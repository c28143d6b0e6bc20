// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Menus/FileMenuController.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenuBar>
#include <QStandardPaths>

namespace murvo {

FileMenuController::FileMenuController(QMenuBar &menuBar, QWidget &window)
    : QObject(&window)
    , _window(window)
    , _folder(QStandardPaths::writableLocation(QStandardPaths::MoviesLocation)) {
    QMenu *menu = menuBar.addMenu(tr("&File"));
    QAction *openAction = menu->addAction(tr("&Open…"), this, &FileMenuController::open);
    openAction->setShortcut(QKeySequence::Open);
    menu->addSeparator();
    QAction *quitAction = menu->addAction(tr("&Quit"), this, &FileMenuController::quitChosen);
    quitAction->setShortcut(QKeySequence::Quit);
    // The page's window has the keys during a film.
    openAction->setShortcutContext(Qt::ApplicationShortcut);
    quitAction->setShortcutContext(Qt::ApplicationShortcut);
    // The menu bar hides in full screen and with it the actions; the window keeps their shortcuts alive.
    window.addActions({openAction, quitAction});
}

void FileMenuController::open() {
    // Above the window that the user looks at, which during a film is the page's.
    QWidget *active = QApplication::activeWindow();
    // The chooser takes a folder that is not there for the name of a file.
    const QString folder = QFileInfo(_folder).isDir() ? _folder : QDir::homePath();
    QFileDialog chooser(active ? active : &_window, tr("Open a film"), folder);
    chooser.setFileMode(QFileDialog::ExistingFile);
    if (chooser.exec() != QDialog::Accepted || chooser.selectedFiles().isEmpty())
        return;
    const QString path = chooser.selectedFiles().first();
    _folder = QFileInfo(path).absolutePath();
    Q_EMIT videoChosen(path);
}

} // namespace murvo
