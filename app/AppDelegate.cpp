// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/AppDelegate.h"

#include "app/Classes/MSubtitlesToDownload.h"
#include "app/Classes/MSubtitlesToUpload.h"
#include "app/Classes/PageScripts.h"
#include "app/Media/VLCMediaPlayer.h"
#include "app/Menus/FileMenuController.h"
#include "app/Menus/ViewMenuController.h"
#include "app/Platform/MainWindow.h"
#include "app/Platform/X11WindowManager.h"
#include "app/ViewControllers/LoaderViewController.h"
#include "app/ViewControllers/VLCVideoViewController.h"
#include "app/ViewControllers/WebViewController.h"

#include <QMenuBar>

namespace murvo {

AppDelegate::AppDelegate(QWebEngineProfile &profile, const VLCInstance &vlc, ServiceLink serviceLink)
    : _profile(profile)
    , _vlc(vlc)
    , _serviceLink(std::move(serviceLink))
    , _window(std::make_unique<MainWindow>())
    , _spokenSound(vlc) {
    MSubtitlesToDownload::setHttpClient(&_videoConnections);
    MSubtitlesToUpload::setHttpClient(&_videoConnections);
}

AppDelegate::~AppDelegate() {
    endEarlierVideo();
    _window->disconnect(this);
    MSubtitlesToDownload::setHttpClient(nullptr);
    MSubtitlesToUpload::setHttpClient(nullptr);
}

void AppDelegate::applicationDidFinishLaunching() {
    connectMainWindow();
    connectMenus();
    connectDownloads();
    auto &center = NotificationCenter::defaultCenter();
    _observers.push_back(
        center.addObserver(notifications::launchVideo, [this](const QVariantMap &) { launchVideo(); }));
    _observers.push_back(center.addObserver(notifications::hashComputed, [this](const QVariantMap &userInfo) {
        receiveHash(userInfo.value(notifications::hashKey).value<VideoHash>());
    }));
    loadHomeScreen();
    _window->show();
    _window->center();
}

void AppDelegate::connectMainWindow() {
    // main window -> this
    connect(_window.get(), &MainWindow::didResize, this, &AppDelegate::windowDidResize);
    connect(_window.get(), &MainWindow::didMove, this, &AppDelegate::repositionWindows);
    connect(_window.get(), &MainWindow::didBecomeKey, this, &AppDelegate::windowDidBecomeKey);
    connect(_window.get(), &MainWindow::didEnterFullScreen, this, [this] {
        raisePlayerWindows();
        sendToPlayerPage(PageScripts::enteredFullscreen());
    });
    connect(_window.get(), &MainWindow::didExitFullScreen, this, [this] {
        raisePlayerWindows();
        sendToPlayerPage(PageScripts::leftFullscreen());
    });
    _window->setShouldClose([this] { return windowShouldClose(); });
}

void AppDelegate::connectMenus() {
    auto *fileMenu = new FileMenuController(*_window->menuBar(), *_window);
    // File menu -> this
    connect(fileMenu, &FileMenuController::videoChosen, this, &AppDelegate::takeVideoIn);
    connect(fileMenu, &FileMenuController::urlChosen, this, &AppDelegate::takeVideoIn);
    connect(fileMenu, &FileMenuController::quitChosen, this, &AppDelegate::terminate);
    auto *viewMenu = new ViewMenuController(*_window->menuBar(), *_window);
    // View menu -> main window -> View menu
    connect(viewMenu, &ViewMenuController::fullScreenToggled, _window.get(), &MainWindow::toggleFullScreen);
    connect(_window.get(), &MainWindow::didEnterFullScreen, viewMenu,
            [viewMenu] { viewMenu->setFullScreen(true); });
    connect(_window.get(), &MainWindow::didExitFullScreen, viewMenu,
            [viewMenu] { viewMenu->setFullScreen(false); });
}

void AppDelegate::comeToFront() {
    _window->setWindowState(_window->windowState() & ~Qt::WindowMinimized);
    _window->show();
    activateForUser(*_window->windowHandle()); // the windows over it come with it
}

VLCMediaPlayer *AppDelegate::player() const {
    return _vlcVideoViewController ? &_vlcVideoViewController->player() : nullptr;
}

} // namespace murvo
