// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/TextDemuxer.h"

#include "Subtitles/CuePackets.h"
#include "Subtitles/FileRepairs.h"

#include <algorithm>
#include <cstring>
#include <memory>

extern "C" {
#include <libavformat/avformat.h>
}

namespace murvo::service {

namespace {

constexpr int ioBufferBytes = 32 * 1024;

struct InputCloser {
    void operator()(AVFormatContext *input) const { avformat_close_input(&input); }
};
struct IoFreer {
    void operator()(AVIOContext *io) const {
        av_freep(&io->buffer);
        avio_context_free(&io);
    }
};
struct PacketFreer {
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
};

/// The text as libavformat reads a file: from a place that moves.
struct MemoryFile {
    QByteArrayView bytes;
    qint64 position = 0;

    static int read(void *opaque, uint8_t *to, int most) {
        auto &file = *static_cast<MemoryFile *>(opaque);
        const qint64 left = file.bytes.size() - file.position;
        const int count = static_cast<int>(std::min<qint64>(most, left));
        if (count <= 0)
            return AVERROR_EOF;
        std::memcpy(to, file.bytes.data() + file.position, static_cast<size_t>(count));
        file.position += count;
        return count;
    }

    static int64_t seek(void *opaque, int64_t offset, int whence) {
        auto &file = *static_cast<MemoryFile *>(opaque);
        if (whence == AVSEEK_SIZE)
            return file.bytes.size();
        const qint64 base = whence == SEEK_CUR ? file.position : whence == SEEK_END ? file.bytes.size() : 0;
        if (base + offset < 0 || base + offset > file.bytes.size())
            return AVERROR(EINVAL);
        file.position = base + offset;
        return file.position;
    }
};

std::unique_ptr<AVFormatContext, InputCloser> openText(AVIOContext &io, const char *demuxer, FrameRate rate) {
    AVFormatContext *raw = avformat_alloc_context();
    if (raw == nullptr)
        return nullptr;
    raw->pb = &io;
    AVDictionary *options = nullptr;
    if (rate.numerator > 0 && rate.denominator > 0) {
        const QByteArray fraction =
            QByteArray::number(rate.numerator) + '/' + QByteArray::number(rate.denominator);
        av_dict_set(&options, "subfps", fraction.constData(), 0);
    }
    const int opened = avformat_open_input(&raw, "", av_find_input_format(demuxer), &options);
    av_dict_free(&options);
    return std::unique_ptr<AVFormatContext, InputCloser>(opened < 0 ? nullptr : raw);
}

} // namespace

QList<Cue> demuxedCues(const QByteArray &text, const char *demuxer, FrameRate rate) {
    MemoryFile file{text};
    const std::unique_ptr<AVIOContext, IoFreer> io(
        avio_alloc_context(static_cast<unsigned char *>(av_malloc(ioBufferBytes)), ioBufferBytes, 0, &file,
                           &MemoryFile::read, nullptr, &MemoryFile::seek));
    const auto input = io ? openText(*io, demuxer, rate) : nullptr;
    const auto packets = input && input->nb_streams > 0 ? CuePackets::of(*input->streams[0]) : std::nullopt;
    const std::unique_ptr<AVPacket, PacketFreer> packet(av_packet_alloc());
    QList<Cue> cues;
    while (packets && packet && cues.size() < mostCuesOfFile &&
           av_read_frame(input.get(), packet.get()) >= 0) {
        cues.append(packets->read(*packet));
        av_packet_unref(packet.get());
    }
    return cues;
}

} // namespace murvo::service
