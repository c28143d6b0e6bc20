// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Media/VLCTime.h"

#include <QByteArray>
#include <QList>
#include <QSize>
#include <QString>
#include <QUrl>

#include <memory>

struct libvlc_media_t;

namespace murvo {

class VLCInstance;

/// One elementary stream of a media, as far as it is known so far. Width and height in pixels, 0 while
/// unknown.
struct VLCTrackInformation {
    QString type; ///< "video", "audio", "text" or "unknown"
    unsigned width = 0;
    unsigned height = 0;
};

/// The pictures of a film: their size, and how wide and high they are meant to look, in any unit.
struct VLCPictureFormat {
    QSize pixels;
    QSizeF shape;
};

/// A film or a sound to be played. Main thread only.
class VLCMedia {
  public:
    /// Null when the library is unusable.
    [[nodiscard]] static std::unique_ptr<VLCMedia> mediaWithPath(const VLCInstance &instance,
                                                                 const QString &path);
    [[nodiscard]] static std::unique_ptr<VLCMedia> mediaWithURL(const VLCInstance &instance, const QUrl &url);
    /// Played from memory; the bytes are kept as long as the media.
    [[nodiscard]] static std::unique_ptr<VLCMedia> mediaWithData(const VLCInstance &instance,
                                                                 QByteArray data);

    ~VLCMedia();
    VLCMedia(const VLCMedia &) = delete;
    VLCMedia &operator=(const VLCMedia &) = delete;

    /// Absent until the library knows it.
    [[nodiscard]] VLCTime length() const;
    [[nodiscard]] QList<VLCTrackInformation> tracksInformation() const;
    /// Of the first video track, turned upright; empty while unknown. Any thread.
    [[nodiscard]] VLCPictureFormat pictureFormat() const;
    /// Whether a video or audio track is known so far.
    [[nodiscard]] bool hasPictureOrSound() const;
    /// Whether a piece of picture or sound has been decoded since it was opened; late by up to 250 ms.
    [[nodiscard]] bool hasDecodedAnything() const;

    /// Borrowed.
    [[nodiscard]] libvlc_media_t *handle() const;

  private:
    struct Impl;
    explicit VLCMedia(std::unique_ptr<Impl> impl);
    static std::unique_ptr<VLCMedia> fromHandle(libvlc_media_t *handle);

    std::unique_ptr<Impl> _impl;
};

} // namespace murvo
