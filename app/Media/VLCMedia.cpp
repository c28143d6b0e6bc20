// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Media/VLCMedia.h"

#include "app/Media/VLCHandles.h"
#include "app/Media/VLCInstance.h"

#include <QFile>

#include <algorithm>
#include <cstring>

namespace murvo {

namespace {

/// The bytes of a sound with the position to read next; one reader at a time, on one of libVLC's threads.
struct MemoryStream {
    QByteArray data;
    qsizetype position = 0;
};

int openStream(void *opaque, void **data, uint64_t *size) {
    auto *stream = static_cast<MemoryStream *>(opaque);
    stream->position = 0;
    *data = stream;
    *size = static_cast<uint64_t>(stream->data.size());
    return 0;
}

ssize_t readStream(void *opaque, unsigned char *buffer, size_t length) {
    auto *stream = static_cast<MemoryStream *>(opaque);
    const qsizetype count = qMin(static_cast<qsizetype>(length), stream->data.size() - stream->position);
    std::memcpy(buffer, stream->data.constData() + stream->position, static_cast<size_t>(count));
    stream->position += count;
    return count;
}

int seekStream(void *opaque, uint64_t offset) {
    auto *stream = static_cast<MemoryStream *>(opaque);
    if (offset > static_cast<uint64_t>(stream->data.size()))
        return -1;
    stream->position = static_cast<qsizetype>(offset);
    return 0;
}

QString typeName(libvlc_track_type_t type) {
    switch (type) {
    case libvlc_track_video:
        return QStringLiteral("video");
    case libvlc_track_audio:
        return QStringLiteral("audio");
    case libvlc_track_text:
        return QStringLiteral("text");
    case libvlc_track_unknown:
        break;
    }
    return QStringLiteral("unknown");
}

template<typename Visitor>
void forEachTrack(libvlc_media_t *media, Visitor visit) {
    libvlc_media_track_t **tracks = nullptr;
    const unsigned count = libvlc_media_tracks_get(media, &tracks);
    for (unsigned i = 0; i < count; ++i)
        visit(*tracks[i]);
    if (tracks)
        libvlc_media_tracks_release(tracks, count);
}

} // namespace

struct VLCMedia::Impl {
    MemoryStream stream; // outlives the handle that reads it
    VLCHandle<libvlc_media_t> media;
};

VLCMedia::VLCMedia(std::unique_ptr<Impl> impl)
    : _impl(std::move(impl)) {}

VLCMedia::~VLCMedia() = default;

std::unique_ptr<VLCMedia> VLCMedia::fromHandle(libvlc_media_t *handle) {
    if (!handle)
        return nullptr;
    auto impl = std::make_unique<Impl>();
    impl->media.reset(handle);
    // Without the vendor's own driver the search for a VDPAU decoder ends in a message on stderr and a
    // picture that starts later. The library takes this option for a media only.
    if (!QFile::exists(QStringLiteral("/proc/driver/nvidia/version")))
        libvlc_media_add_option(handle, ":avcodec-hw=vaapi,none");
    return std::unique_ptr<VLCMedia>(new VLCMedia(std::move(impl)));
}

std::unique_ptr<VLCMedia> VLCMedia::mediaWithPath(const VLCInstance &instance, const QString &path) {
    if (!instance.isUsable())
        return nullptr;
    return fromHandle(libvlc_media_new_path(instance.handle(), QFile::encodeName(path).constData()));
}

std::unique_ptr<VLCMedia> VLCMedia::mediaWithURL(const VLCInstance &instance, const QUrl &url) {
    if (!instance.isUsable())
        return nullptr;
    return fromHandle(libvlc_media_new_location(instance.handle(), url.toEncoded().constData()));
}

std::unique_ptr<VLCMedia> VLCMedia::mediaWithData(const VLCInstance &instance, QByteArray data) {
    if (!instance.isUsable())
        return nullptr;
    auto impl = std::make_unique<Impl>();
    impl->stream.data = std::move(data);
    impl->media.reset(libvlc_media_new_callbacks(instance.handle(), openStream, readStream, seekStream,
                                                 nullptr, &impl->stream));
    if (!impl->media)
        return nullptr;
    return std::unique_ptr<VLCMedia>(new VLCMedia(std::move(impl)));
}

VLCTime VLCMedia::length() const {
    const libvlc_time_t duration = libvlc_media_get_duration(_impl->media.get());
    return duration > 0 ? VLCTime::timeWithInt(duration) : VLCTime();
}

QList<VLCTrackInformation> VLCMedia::tracksInformation() const {
    QList<VLCTrackInformation> information;
    forEachTrack(_impl->media.get(), [&](const libvlc_media_track_t &track) {
        VLCTrackInformation one{.type = typeName(track.i_type)};
        if (track.i_type == libvlc_track_video && track.video) {
            one.width = track.video->i_width;
            one.height = track.video->i_height;
        }
        information.append(one);
    });
    return information;
}

VLCPictureFormat VLCMedia::pictureFormat() const {
    VLCPictureFormat format;
    forEachTrack(_impl->media.get(), [&](const libvlc_media_track_t &track) {
        if (track.i_type != libvlc_track_video || !track.video || !format.pixels.isEmpty())
            return;
        const libvlc_video_track_t &video = *track.video;
        const bool hasShape = video.i_sar_num > 0 && video.i_sar_den > 0;
        const double pixelAspect = hasShape ? static_cast<double>(video.i_sar_num) / video.i_sar_den : 1;
        format.pixels = QSize(static_cast<int>(video.i_width), static_cast<int>(video.i_height));
        format.shape = QSizeF(video.i_width * pixelAspect, video.i_height);
        if (video.i_orientation >= libvlc_video_orient_left_top) { // it lies on its side
            format.pixels.transpose();
            format.shape.transpose();
        }
    });
    return format;
}

bool VLCMedia::hasPictureOrSound() const {
    const QList<VLCTrackInformation> tracks = tracksInformation();
    return std::any_of(tracks.cbegin(), tracks.cend(), [](const VLCTrackInformation &track) {
        return track.type == QLatin1String("video") || track.type == QLatin1String("audio");
    });
}

bool VLCMedia::hasDecodedAnything() const {
    libvlc_media_stats_t statistics = {};
    return libvlc_media_get_stats(_impl->media.get(), &statistics) != 0 &&
           (statistics.i_decoded_video > 0 || statistics.i_decoded_audio > 0);
}

libvlc_media_t *VLCMedia::handle() const {
    return _impl->media.get();
}

} // namespace murvo
