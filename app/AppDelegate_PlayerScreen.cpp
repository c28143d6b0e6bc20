// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/AppDelegate.h"

#include "app/Classes/MDragReceiverWebView.h"
#include "app/Classes/MKeyableWindow.h"
#include "app/Classes/PageScripts.h"
#include "app/Media/VLCMediaPlayer.h"
#include "app/Media/VLCVideoView.h"
#include "app/Platform/MainWindow.h"
#include "app/Platform/X11WindowManager.h"
#include "app/ViewControllers/LoaderViewController.h"
#include "app/ViewControllers/PageRetry.h"
#include "app/ViewControllers/VLCVideoViewController.h"
#include "app/ViewControllers/WebViewController.h"

#include <QDialog>
#include <QStackedLayout>

#include <algorithm>
#include <iterator>
#include <vector>

namespace murvo {

namespace {

void fill(QWidget &window, QWidget *view) {
    auto *layout = new QStackedLayout(&window); // every view added fills the window
    layout->setStackingMode(QStackedLayout::StackAll);
    layout->addWidget(view);
}

/// Those whose parent is the window, or one that lies over it. Not an answered alert that waits to be
/// deleted.
std::vector<QDialog *> openDialogs(const QWidget &window) {
    const QList<QDialog *> all = window.findChildren<QDialog *>();
    std::vector<QDialog *> open;
    std::copy_if(all.begin(), all.end(), std::back_inserter(open),
                 [](const QDialog *dialog) { return dialog->isVisible(); });
    return open;
}

} // namespace

void AppDelegate::loadPlayerScreen() {
    _loaderViewController->hideLoader();
    if (!_vlcVideoViewController) {
        createPlayerScreen();
        connectPlayerScreen();
    }
    // Where windows are not composited, the page's hides all beneath it: the film has to be within it.
    _vlcVideoViewController->setPictureBeneathPage(!isDesktopComposited());
    // Over a minimised main window the two would stand alone on the desktop.
    _window->setWindowState(_window->windowState() & ~Qt::WindowMinimized);
    repositionWindows();
    _vlcViewWindow->show();
    _playerWebViewWindow->show();
    _playerWebViewWindow->makeKeyWindow();
    // The person may have begun to choose another film while this one was looked up.
    for (QDialog *dialog : openDialogs(*_window))
        dialog->raise();
}

void AppDelegate::dismissDialogs(const QWidget &above) {
    // A chooser or a dialog goes with what it was opened over: hidden with it, it would still block the whole
    // program.
    for (QDialog *dialog : openDialogs(above))
        dialog->reject();
}

void AppDelegate::hidePlayerScreen() {
    _playerWebViewController->clear();
    dismissDialogs(*_playerWebViewWindow);
    _playerWebViewWindow->hide();
    _vlcViewWindow->hide();
}

void AppDelegate::createPlayerScreen() {
    _playerWebViewController = std::make_unique<WebViewController>(_profile);
    // Each window is transient for the one beneath it: window managers keep only such a chain in order.
    _vlcViewWindow =
        new QWidget(_window.get(), Qt::Tool | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint |
                                       Qt::WindowDoesNotAcceptFocus);
    _vlcViewWindow->setAttribute(Qt::WA_ShowWithoutActivating);
    _vlcViewWindow->setWindowTitle(_window->windowTitle());
    _playerWebViewWindow = new MKeyableWindow(*_window, *_playerWebViewController, _vlcViewWindow);
    _vlcVideoViewController =
        std::make_unique<VLCVideoViewController>(_vlc, *_playerWebViewController, _vlcViewWindow);
    fill(*_playerWebViewWindow, _playerWebViewController->view());
    fill(*_vlcViewWindow, _vlcVideoViewController->view());
}

void AppDelegate::connectPlayerScreen() {
    // player page -> this
    new PageRetry(*_playerWebViewController, [this] { // its child
        loadPlayerPage();
        return true;
    });
    _playerWebViewController->setNavigationPolicy(
        [this](const QUrl &url) { return decidePolicyForNavigation(url, Page::Player); });
    _playerWebViewController->setFileChooser([this] { return runOpenPanelForFileButton(); });
    _playerWebViewController->view()->setDropHandler([this](const QString &path) { takeVideoIn(path); });
    // player -> this
    connect(player(), &VLCMediaPlayer::stateChanged, this, &AppDelegate::mediaPlayerStateChanged);
    connect(player(), &VLCMediaPlayer::timeChanged, this, &AppDelegate::mediaPlayerTimeChanged);
}

void AppDelegate::repositionWindows() {
    if (!_vlcViewWindow)
        return;
    const QRect content = _window->contentScreenRect();
    _vlcViewWindow->setGeometry(content);
    _playerWebViewWindow->setGeometry(content);
}

void AppDelegate::raisePlayerWindows() {
    // A window manager lifts the window that enters or leaves full screen, and may lift it above the film.
    if (!isPlayerScreenVisible())
        return;
    _vlcViewWindow->raise();
    _playerWebViewWindow->raise();
}

bool AppDelegate::isPlayerScreenVisible() const {
    return _playerWebViewWindow && (_playerWebViewWindow->isVisible() || _vlcViewWindow->isVisible());
}

void AppDelegate::sendToPlayerPage(const QString &script) {
    if (_playerWebViewController)
        _playerWebViewController->send(script);
}

void AppDelegate::exitFullscreen() {
    if (_window->isFullScreen())
        _window->toggleFullScreen();
}

void AppDelegate::windowDidResize() {
    repositionWindows();
    sendToPlayerPage(PageScripts::resized());
}

void AppDelegate::windowDidBecomeKey() {
    if (_playerWebViewWindow)
        _playerWebViewWindow->makeKeyWindow();
}

bool AppDelegate::windowShouldClose() {
    if (isPlayerScreenVisible())
        loadHomeScreen();
    else
        Q_EMIT terminate();
    return false;
}

} // namespace murvo
