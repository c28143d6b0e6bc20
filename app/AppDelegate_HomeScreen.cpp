// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/AppDelegate.h"

#include "app/Classes/MConstants.h"
#include "app/Classes/MDragReceiverWebView.h"
#include "app/Classes/MKeyableWindow.h"
#include "app/Classes/PageScripts.h"
#include "app/Media/VLCMediaPlayer.h"
#include "app/Platform/MainWindow.h"
#include "app/ViewControllers/LoaderViewController.h"
#include "app/ViewControllers/WebViewController.h"

#include <QStackedLayout>

namespace murvo {

namespace {
constexpr QSizeF homeScreenSize(600, 400);
const QString connectingText = QStringLiteral("Connecting...");
} // namespace

void AppDelegate::loadHomeScreen() {
    endEarlierVideo();
    exitFullscreen();
    _window->liftContentAspectRatio(); // first: window managers hold programs to the shape too
    _window->setContentSize(homeScreenSize);
    _window->center();
    if (!_homeWebViewController)
        createHomeScreen();
    if (VLCMediaPlayer *stopped = player())
        stopped->stop();
    if (isPlayerScreenVisible()) {
        _playerWebViewController->clear();
        _playerWebViewWindow->hide();
        _vlcViewWindow->hide();
    }
    _session.aspectRatioSet = false;
    _homeWebViewController->view()->show();
    if (_session.homeScreenLoaded) {
        _loaderViewController->hideLoader();
        _homeWebViewController->send(PageScripts::refreshLevel());
    } else {
        _homeWebViewController->loadUrl(MConstants::serviceAddress(QStringLiteral("Player/Home")));
    }
}

void AppDelegate::createHomeScreen() {
    _homeWebViewController = std::make_unique<WebViewController>(_profile, false);
    QWidget *content = _window->contentView();
    auto *layout = new QStackedLayout(content);
    layout->setStackingMode(QStackedLayout::StackAll);
    _loaderViewController = new LoaderViewController(content);
    layout->addWidget(_homeWebViewController->view());
    layout->addWidget(_loaderViewController->view());
    _loaderViewController->hideLoader();

    // home page -> this
    connect(_homeWebViewController.get(), &WebViewController::progressStarted, this,
            &AppDelegate::homeScreenConnecting);
    connect(_homeWebViewController.get(), &WebViewController::progressFinished, this,
            &AppDelegate::homeScreenConnected);
    _homeWebViewController->setNavigationPolicy(
        [this](const QUrl &url) { return decidePolicyForNavigation(url); });
    _homeWebViewController->view()->setDropHandler([this](const QString &path) { takeVideoIn(path); });
}

void AppDelegate::homeScreenConnecting() {
    MDragReceiverWebView::isDraggable(false);
    _session.homeScreenLoaded = false;
    _loaderViewController->showLoader(connectingText);
}

void AppDelegate::homeScreenConnected() {
    if (_loaderViewController->labelText() == connectingText)
        _loaderViewController->hideLoader();
}

} // namespace murvo
