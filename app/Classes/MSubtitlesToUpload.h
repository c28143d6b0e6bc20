// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Classes/MultipartBody.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace murvo {

class HttpClient;

/// The fetched subtitle files of one film on their way back to the service: one multipart request for all of
/// them, whose end, success or failure, posts LaunchVideo. Nobody is told of a failure but the log.
///
/// One queue for the process, used on the main thread only.
class MSubtitlesToUpload {
  public:
    MSubtitlesToUpload() = delete;

    /// The connections to use. Borrowed; null when the player ends.
    static void setHttpClient(HttpClient *client);

    static void addSubToUpload(MultipartFile file);
    static void uploadAllSubs();
    static void resetUploader();

  private:
    static void processResponse();

    static inline HttpClient *_http = nullptr;
    static inline QList<MultipartFile> subsToUpload;
    static inline bool responseProcessed = false;
    static inline int requestResponseCode = 0; // of the last reply, kept when an upload ends without one
};

} // namespace murvo
