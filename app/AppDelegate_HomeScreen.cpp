// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/AppDelegate.h"

#include "app/Classes/MConstants.h"
#include "app/Classes/MDragReceiverWebView.h"
#include "app/Classes/MKeyableWindow.h"
#include "app/Classes/PageScripts.h"
#include "app/Media/VLCMediaPlayer.h"
#include "app/Platform/MainWindow.h"
#include "app/ViewControllers/LoaderViewController.h"
#include "app/ViewControllers/PageRetry.h"
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
    _window->setContentSize(homeScreenSize);
    _window->center();
    if (!_homeWebViewController)
        createHomeScreen();
    if (VLCMediaPlayer *stopped = player())
        stopped->stop();
    if (isPlayerScreenVisible())
        hidePlayerScreen();
    _window->liftContentAspectRatio();
    _session.aspectRatioSet = false;
    _homeWebViewController->view()->show();
    if (_session.homeScreenLoaded) {
        _loaderViewController->hideLoader();
        _homeWebViewController->send(PageScripts::refreshLevel());
    } else {
        loadHomePage();
    }
}

void AppDelegate::loadHomePage() {
    _homeWebViewController->loadUrl(MConstants::serviceAddress(QStringLiteral("Player/Home")));
}

void AppDelegate::createHomeScreen() {
    _homeWebViewController = std::make_unique<WebViewController>(_profile, false);
    QWidget *content = _window->contentView();
    auto *layout = new QStackedLayout(content);
    layout->setStackingMode(QStackedLayout::StackAll);
    _loaderViewController = new LoaderViewController(content);
    layout->addWidget(_homeWebViewController->view());
    layout->addWidget(_loaderViewController->view());
    // The colour of what lies beneath it, which a transparent view would show.
    _homeWebViewController->setBackgroundColor(
        _loaderViewController->view()->palette().color(QPalette::Window));
    _loaderViewController->hideLoader();

    // home page -> this
    connect(_homeWebViewController.get(), &WebViewController::progressStarted, this,
            &AppDelegate::homeScreenConnecting);
    connect(_homeWebViewController.get(), &WebViewController::progressFinished, this,
            &AppDelegate::homeScreenConnected);
    connect(_homeWebViewController.get(), &WebViewController::pageDied, this, &AppDelegate::homePageDied);
    // "Connecting..." stays meanwhile. Under a film it is loaded, too: films from the shell need it. While
    // one is looked up, the loader belongs to that.
    new PageRetry(*_homeWebViewController, [this] { // its child
        if (_homeWebViewController->view()->isHidden() && !isPlayerScreenVisible())
            return false;
        loadHomePage();
        return true;
    });
    _homeWebViewController->setNavigationPolicy(
        [this](const QUrl &url) { return decidePolicyForNavigation(url, Page::Home); });
    _homeWebViewController->setFileChooser([this] { return runOpenPanelForFileButton(); });
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

void AppDelegate::homePageDied() {
    MDragReceiverWebView::isDraggable(false);
    _session.homeScreenLoaded = false; // so that the way home loads it, when a film is on the screen
}

void AppDelegate::alertThenHome(const QString &message, const QString &informativeText) {
    QWidget *parent = isPlayerScreenVisible() ? static_cast<QWidget *>(_playerWebViewWindow) : _window.get();
    _alert = new QMessageBox(QMessageBox::Warning, _window->windowTitle(), message, QMessageBox::Ok, parent);
    _alert->setInformativeText(informativeText);
    _alert->setWindowModality(Qt::ApplicationModal);
    connect(_alert, &QDialog::finished, this, [this] {
        _alert->deleteLater();
        _alert.clear();
        loadHomeScreen();
    });
    _alert->show();
}

} // namespace murvo
