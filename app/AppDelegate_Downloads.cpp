// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/AppDelegate.h"

#include "app/Classes/MDragReceiverWebView.h"
#include "app/Menus/FileChooser.h"
#include "app/Platform/MainWindow.h"
#include "app/ViewControllers/PageDownloads.h"
#include "app/ViewControllers/WebViewController.h"

#include <QWebEngineDownloadRequest>

namespace murvo {

void AppDelegate::connectDownloads() {
    auto *downloads = new PageDownloads(
        _profile, [this](const QWebEngineDownloadRequest &download) { return isFileForUser(download); },
        [this](const QString &name) {
            return FileChooser::chooseFileToSave(FileChooser::parentAbove(*_window), name);
        },
        this);
    connect(downloads, &PageDownloads::failed, this, &AppDelegate::alertFileNotKept);
}

// Of the service, by its page, and after the user has pressed something there.
bool AppDelegate::isFileForUser(const QWebEngineDownloadRequest &download) const {
    for (const auto *sender : {_homeWebViewController.get(), _playerWebViewController.get()}) {
        if (sender && sender->view()->page() == download.page())
            return sender->isOwnPage() && sender->isOwn(download.url()) && sender->takePress();
    }
    return false;
}

void AppDelegate::alertFileNotKept(const QString &fileName, const QString &reason) {
    auto *alert = new QMessageBox(QMessageBox::Warning, _window->windowTitle(),
                                  tr("\"%1\" could not be saved.").arg(fileName), QMessageBox::Ok,
                                  FileChooser::parentAbove(*_window));
    alert->setInformativeText(reason);
    alert->setWindowModality(Qt::ApplicationModal);
    alert->setAttribute(Qt::WA_DeleteOnClose);
    alert->show();
}

} // namespace murvo
