// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ViewControllers/PageDownloads.h"

#include "app/Platform/Log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QRandomGenerator>
#include <QWebEngineDownloadRequest>
#include <QWebEngineProfile>

#include <filesystem>
#include <system_error>

namespace murvo {

namespace {

using State = QWebEngineDownloadRequest::DownloadState;

/// Beside the file, where it takes its place at once, under a name that nothing else has.
QString partPathFor(const QString &path) {
    const QFileInfo file(path);
    const QString number = QString::number(QRandomGenerator::global()->generate(), 16);
    return file.dir().filePath(u'.' + file.fileName().left(100) + u'.' + number + QStringLiteral(".part"));
}

// The engine calls an answer whole that broke off.
bool isWhole(const QWebEngineDownloadRequest &download, const QString &partPath) {
    const qint64 bytes = QFileInfo(partPath).size();
    return download.state() == State::DownloadCompleted && bytes == download.receivedBytes() &&
           (download.totalBytes() <= 0 || bytes == download.totalBytes());
}

} // namespace

PageDownloads::PageDownloads(QWebEngineProfile &profile, IsAllowed isAllowed, Chooser chooser,
                             QObject *parent)
    : QObject(parent)
    , _isAllowed(std::move(isAllowed))
    , _chooser(std::move(chooser)) {
    connect(&profile, &QWebEngineProfile::downloadRequested, this, &PageDownloads::take);
}

// One that is not accepted is cancelled by the engine.
void PageDownloads::take(QWebEngineDownloadRequest *download) {
    if (_running && _running->id == download->id()) { // it broke off, and the engine tries again by itself
        giveUp(QString());
        return;
    }
    if (_isChoosing || _running || download->isSavePageDownload() || !_isAllowed(*download)) {
        qCWarning(logPage).noquote() << "Refused a file of a page:"
                                     << singleLine(download->suggestedFileName());
        return;
    }
    const QPointer<QWebEngineDownloadRequest> wanted(download);
    _isChoosing = true;
    const QString path = _chooser(QFileInfo(download->suggestedFileName()).fileName());
    _isChoosing = false;
    if (wanted && !path.isEmpty())
        begin(*wanted, path);
}

void PageDownloads::begin(QWebEngineDownloadRequest &download, const QString &path) {
    const QString partPath = partPathFor(path);
    _running = Running{download.id(), partPath, path};
    download.setDownloadDirectory(QFileInfo(partPath).absolutePath());
    download.setDownloadFileName(QFileInfo(partPath).fileName());
    connect(&download, &QWebEngineDownloadRequest::stateChanged, this, [this, &download] { end(download); });
    download.accept();
}

void PageDownloads::end(QWebEngineDownloadRequest &download) {
    if (download.state() == State::DownloadInProgress || !_running || _running->id != download.id())
        return;
    if (!isWhole(download, _running->partPath)) {
        const QString reason = download.interruptReasonString();
        // So that the engine keeps nothing to go on with. It is in the middle of telling about it.
        QMetaObject::invokeMethod(&download, &QWebEngineDownloadRequest::cancel, Qt::QueuedConnection);
        giveUp(reason);
        return;
    }
    std::error_code problem;
    std::filesystem::rename(QFile::encodeName(_running->partPath).toStdString(),
                            QFile::encodeName(_running->path).toStdString(), problem);
    if (problem)
        giveUp(QString::fromLocal8Bit(problem.message().c_str()));
    else
        _running.reset();
}

void PageDownloads::giveUp(const QString &reason) {
    const QString path = _running->path;
    QFile::remove(_running->partPath);
    _running.reset();
    qCWarning(logPage).noquote() << "A file of a page could not be kept:" << singleLine(reason);
    Q_EMIT failed(QFileInfo(path).fileName(), reason);
}

} // namespace murvo
