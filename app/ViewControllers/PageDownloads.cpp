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

#include <cerrno>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

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

QString reasonOf(const std::error_code &problem) {
    return problem ? QString::fromLocal8Bit(problem.message().c_str()) : QString();
}

std::error_code bringToDisk(const QString &path) {
    const int handle = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    std::error_code problem;
    if (handle < 0 || ::fsync(handle) != 0)
        problem = {errno, std::generic_category()};
    if (handle >= 0)
        ::close(handle);
    return problem;
}

/// What the file holds is on the disk before it has its name. Null, or why it could not be done.
QString givePlace(const QString &partPath, const QString &path) {
    if (const std::error_code problem = bringToDisk(partPath))
        return reasonOf(problem);
    std::error_code problem;
    std::filesystem::rename(QFile::encodeName(partPath).toStdString(), QFile::encodeName(path).toStdString(),
                            problem);
    if (!problem && bringToDisk(QFileInfo(path).absolutePath())) // it is there, and whole, all the same
        qCWarning(logPage) << "The name of a file of a page may not outlive a power cut";
    return reasonOf(problem);
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
        giveUp(takeRunning(), QString());
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
        giveUp(takeRunning(), reason);
        return;
    }
    keep(takeRunning());
}

PageDownloads::Running PageDownloads::takeRunning() {
    Running file = *_running;
    _running.reset();
    return file;
}

// The disk may take its time, and the next file need not wait for it.
void PageDownloads::keep(const Running &file) {
    const QPointer<PageDownloads> self(this);
    _disk.async([self, file] {
        const QString reason = givePlace(file.partPath, file.path);
        if (reason.isNull())
            return;
        TaskQueue::mainQueue().async([self, file, reason] {
            if (self)
                self->giveUp(file, reason);
        });
    });
}

void PageDownloads::giveUp(const Running &file, const QString &reason) {
    QFile::remove(file.partPath);
    qCWarning(logPage).noquote() << "A file of a page could not be kept:" << singleLine(reason);
    Q_EMIT failed(QFileInfo(file.path).fileName(), reason);
}

} // namespace murvo
