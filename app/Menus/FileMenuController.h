// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

class QMenuBar;
class QWidget;

namespace murvo {

/// The File menu of the main window: open a film by its file or its address, quit. It says what the user
/// wants and does nothing else.
class FileMenuController : public QObject {
    Q_OBJECT

  public:
    /// Adds its menu to the bar; window is the parent of its choosers.
    FileMenuController(QMenuBar &menuBar, QWidget &window);

    /// Lets the user choose one file of any kind; cancelling does nothing.
    void open();
    /// Lets the user type the address of a film; cancelling does nothing.
    void openUrl();

  Q_SIGNALS:
    void videoChosen(const QString &path);
    void urlChosen(const QString &url);
    void quitChosen();

  private:
    QWidget &_window;
};

} // namespace murvo
