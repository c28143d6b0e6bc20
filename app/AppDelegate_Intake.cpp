// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/AppDelegate.h"

#include "app/Classes/MDragReceiverWebView.h"
#include "app/Classes/MSubtitlesToDownload.h"
#include "app/Classes/MSubtitlesToUpload.h"
#include "app/Classes/OSHashAlgorithm.h"
#include "app/Classes/PageScripts.h"
#include "app/Classes/VideoSource.h"
#include "app/Menus/FileChooser.h"
#include "app/Platform/Log.h"
#include "app/Platform/MainWindow.h"
#include "app/ViewControllers/LoaderViewController.h"
#include "app/ViewControllers/WebViewController.h"

namespace murvo {

void AppDelegate::applicationOpenFile(const QString &path) {
    _session.inputVideoSource = path;
    if (_serviceLink.filmPending)
        _serviceLink.filmPending();
}

void AppDelegate::takeVideoIn(const QString &videoSource) {
    // A hidden home page means that a film is on the screen: it ends first, and the window's shape with it.
    if (_homeWebViewController->view()->isHidden())
        loadHomeScreen();
    processVideoAndLaunch(videoSource);
}

void AppDelegate::processVideoAndLaunch(const QString &videoSource) {
    endEarlierVideo();
    dismissDialogs(*_window);
    const unsigned generation = _generation;
    _session.subtitlesData.clear();
    _session.videoProcessStatusCode = 0;
    qCInfo(logIntake, "Analyzing video...");
    _session.videoSourcePath = videoSource;
    const QString language = _homeWebViewController->evaluate(PageScripts::selectedLanguage());
    if (generation != _generation) // another film was taken in while the page answered
        return;
    _session.nativeLanguage = language;
    _homeWebViewController->view()->hide();
    _loaderViewController->showLoader(QStringLiteral("Searching subtitles..."));
    if (isUrl()) {
        OSHashAlgorithm::computeHashForURL(_session.videoSourcePath);
        return;
    }
    FileChooser::rememberFolderOf(_session.videoSourcePath);
    OSHashAlgorithm::computeHashForPath(_session.videoSourcePath);
}

void AppDelegate::endEarlierVideo() {
    // The remote hash is given up first: what it has posted by then still carries the old generation.
    OSHashAlgorithm::cancelRemoteHash();
    ++_generation;
    _videoConnections.abandonAll();
    MSubtitlesToDownload::resetDownloader();
    MSubtitlesToUpload::resetUploader();
    delete _alert;
}

bool AppDelegate::isUrl() const {
    return isUrlText(_session.videoSourcePath);
}

} // namespace murvo
