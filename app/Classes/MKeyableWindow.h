// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

namespace murvo {

class MainWindow;
class WebViewController;

/// The borderless transparent window that carries the player page over the picture. It takes the keys. It
/// sees events before the page: a double-click on the picture, and Escape, change the main window's full
/// screen; the rest goes to the page. Main thread only.
class MKeyableWindow : public QWidget {
    Q_OBJECT

  public:
    /// Both are borrowed; the page may go before the window does, once the event loop has ended. parent is
    /// the window beneath it.
    MKeyableWindow(MainWindow &mainWindow, WebViewController &page, QWidget *parent);

    /// Gives the keys to the page; does nothing while the window is hidden.
    void makeKeyWindow();

    bool eventFilter(QObject *watched, QEvent *event) override;

  protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

  private:
    /// True when the event is used up here.
    bool sendEvent(QEvent *event);
    /// Asks the page whose it is, and uses it or hands it on.
    void handleDoubleClick(const QMouseEvent &click);

    MainWindow &_mainWindow;
    WebViewController &_page;
    const QEvent *_handedOn = nullptr; // passes the filter
};

} // namespace murvo
