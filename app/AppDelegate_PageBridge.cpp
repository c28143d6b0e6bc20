// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/AppDelegate.h"

#include "app/Classes/MConstants.h"
#include "app/Classes/PageScripts.h"
#include "app/Classes/TextFormat.h"
#include "app/Menus/FileChooser.h"
#include "app/Platform/DesktopShell.h"
#include "app/Platform/Log.h"
#include "app/Platform/MainWindow.h"
#include "app/ViewControllers/WebViewController.h"

namespace murvo {

namespace {

/// Decimal text of a number as pages get it; seven digits are what a single-precision number holds.
QString stringValue(const QVariant &value) {
    if (value.typeId() == QMetaType::Float)
        return QString::number(value.toFloat(), 'g', 7);
    return value.toString();
}

} // namespace

bool AppDelegate::decidePolicyForNavigation(const QUrl &url, Page page) {
    if (lastUrlComponent(url) == QLatin1String("PlayerRegister")) {
        DesktopShell::openInBrowser(MConstants::serviceAddress(QStringLiteral("Account/Register")));
        return false; // the page stays as it is
    }
    const auto request = PageRequest::fromUrl(url);
    if (!request)
        return true;
    const WebViewController &sender =
        page == Page::Home ? *_homeWebViewController : *_playerWebViewController;
    if (!sender.isOwnPage()) {
        qCWarning(logPage).noquote() << "Refused a page that is not the service's:"
                                     << singleLine(url.toString(QUrl::RemoveQuery));
        return false;
    }
    // The web engine is in the middle of a navigation: what the page wants is done right after it, in order.
    QMetaObject::invokeMethod(
        this,
        [this, page, request, generation = _generation.load()] {
            // What the page of a film has sent ends with the film.
            if (page == Page::Home || (generation == _generation && isPlayerScreenVisible()))
                handlePageRequest(*request);
        },
        Qt::QueuedConnection);
    return false;
}

QStringList AppDelegate::runOpenPanelForFileButton() {
    return FileChooser::chooseSubtitles(FileChooser::parentAbove(*_window));
}

void AppDelegate::handlePageRequest(const PageRequest &request) {
    switch (request.kind) {
    case PageRequest::Kind::Execute:
        handleExecutionRequest(request.name, request.arguments);
        break;
    case PageRequest::Kind::Request:
        handleDataRequest(request.name, request.arguments);
        break;
    case PageRequest::Kind::Unknown:
        break;
    }
}

void AppDelegate::handleDataRequest(const QString &name, const Arguments &arguments) {
    const QString guid = arguments.value(QStringLiteral("guid"));
    if (name == QLatin1String("Duration"))
        answerWhenKnown(_durationDeferred, guid);
    else if (name == QLatin1String("AudioInfo"))
        answerWhenKnown(_audioInfoDeferred, guid);
    else if (name == QLatin1String("PlaybackSpeed"))
        answerWhenKnown(_playbackSpeedDeferred, guid);
    else if (name == QLatin1String("Volume"))
        answerWhenKnown(_volumeDeferred, guid);
    else if (name == QLatin1String("IsFullscreen"))
        returnJsResultToClient(_window->isFullScreen() ? QStringLiteral("true") : QStringLiteral("false"),
                               guid);
    else if (name == QLatin1String("FileName"))
        returnJsResultToClient(PageScripts::quoted(orNullText(_session.videoFileName)), guid);
}

void AppDelegate::answerWhenKnown(const Deferred::Ptr &deferred, const QString &guid) {
    if (!deferred)
        return;
    deferred->promise()->when(
        [this, guid](const QVariant &value) { returnJsResultToClient(stringValue(value), guid); });
}

void AppDelegate::returnJsResultToClient(const QString &value, const QString &guid) {
    sendToPlayerPage(PageScripts::response(guid, value));
}

} // namespace murvo
