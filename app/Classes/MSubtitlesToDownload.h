// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <memory>
#include <vector>

namespace murvo {

class HttpClient;

/// One subtitle file on its way from the service, and, at class level, the queue of them all. The queue
/// fetches every file at once and in memory; the end of the last fetch, whatever came of it, empties the
/// queue and starts the upload (MSubtitlesToUpload). With nothing to fetch it posts LaunchVideo itself.
///
/// One queue for the process, used on the main thread only.
class MSubtitlesToDownload {
  public:
    MSubtitlesToDownload(QString fileName, qint32 subsId, QString downloadUrl);

    /// The connections to use. Borrowed; null when the player ends.
    static void setHttpClient(HttpClient *client);

    static void addSubToDownload(std::unique_ptr<MSubtitlesToDownload> sub);
    static void downloadAllSubsAndPlay();

    /// Empties the queue. Fetches still under way must have been abandoned: they belong to the queue's
    /// records.
    static void resetDownloader();

  private:
    void download();

    /// Ends this fetch. After the last one the record is gone when the call returns.
    void processResponse();

    qint32 subsId;
    qint32 requestResponseCode = -1; // HTTP status; -1 until a response arrives
    bool responseProcessed = false;
    QString downloadUrl;
    QString fileName;
    QByteArray downloadedData;

    static inline HttpClient *_http = nullptr;
    static inline std::vector<std::unique_ptr<MSubtitlesToDownload>> subsToDownload;
    static inline qint32 nbSubsToDownload = 0; // fetches still under way
};

} // namespace murvo
