// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

class QAction;
class QMenuBar;
class QShortcut;
class QWidget;

namespace murvo {

/// The View menu of the main window: full screen. It says what the user wants and shows what is.
class ViewMenuController : public QObject {
    Q_OBJECT

  public:
    /// Adds its menu to the bar.
    ViewMenuController(QMenuBar &menuBar, QWidget &window);

    void setFullScreen(bool isFullScreen);

  Q_SIGNALS:
    void fullScreenToggled();

  private:
    QAction *_fullScreenAction;
    QShortcut *_leaveShortcut;
};

} // namespace murvo
