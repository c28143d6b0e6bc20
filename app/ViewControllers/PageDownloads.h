// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Platform/TaskQueue.h"

#include <QObject>
#include <QString>

#include <functional>
#include <optional>

class QWebEngineDownloadRequest;
class QWebEngineProfile;

namespace murvo {

/// The files that pages give the user to keep. One at a time is taken: the user chooses where it goes, and it
/// is there once it is whole, else what was there before, even when the power fails. Main thread only, but
/// for the wait for the disk; the profile is borrowed. It knows no page: who may give what the call decides.
class PageDownloads : public QObject {
    Q_OBJECT

  public:
    using IsAllowed = std::function<bool(const QWebEngineDownloadRequest &download)>;
    /// Asks the user for a path; null when the user cancels. Runs the event loop.
    using Chooser = std::function<QString(const QString &suggestedName)>;

    PageDownloads(QWebEngineProfile &profile, IsAllowed isAllowed, Chooser chooser,
                  QObject *parent = nullptr);

  Q_SIGNALS:
    /// It could not be kept; reason is a sentence or empty.
    void failed(const QString &fileName, const QString &reason);

  private:
    struct Running {
        quint32 id;
        QString partPath; ///< where it is written until it is whole
        QString path;
    };

    void take(QWebEngineDownloadRequest *download);
    void begin(QWebEngineDownloadRequest &download, const QString &path);
    void end(QWebEngineDownloadRequest &download);
    /// There is one; then there is none.
    [[nodiscard]] Running takeRunning();
    void keep(const Running &file);
    void giveUp(const Running &file, const QString &reason);

    IsAllowed _isAllowed;
    Chooser _chooser;
    bool _isChoosing = false;
    std::optional<Running> _running;
    TaskQueue _disk{QStringLiteral("page downloads")};
};

} // namespace murvo
