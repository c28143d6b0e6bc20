// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/CueReader.h"

#include "Subtitles/Charset.h"
#include "Subtitles/PlainText.h"
#include "Subtitles/WebVttBlocks.h"

#include <QRegularExpression>

#include <algorithm>
#include <cstring>
#include <memory>

extern "C" {
#include <libavformat/avformat.h>
}

namespace murvo::service {

namespace {

constexpr qsizetype mostCues = 50'000;
constexpr qsizetype bytesToTellFormatFrom = 16'384;
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

// Probing misses files that can be read well (no index lines, junk first): the format is told here and
// forced.
const char *formatName(const QByteArray &text) {
    static const QRegularExpression microDvd(QStringLiteral("^\\s*\\{\\d+\\}\\{\\d*\\}"),
                                             QRegularExpression::MultilineOption);
    static const QRegularExpression mpl2(QStringLiteral("^\\s*\\[\\d+\\]\\[\\d*\\]"),
                                         QRegularExpression::MultilineOption);
    static const QRegularExpression subViewer(QStringLiteral("^\\s*\\d+:\\d+:\\d+[.]\\d+,\\d+:\\d+:\\d+"),
                                              QRegularExpression::MultilineOption);
    const QString start = QString::fromUtf8(text.left(bytesToTellFormatFrom));
    if (start.startsWith(QLatin1String("WEBVTT")))
        return "webvtt";
    if (start.contains(QLatin1String("[Script Info]"), Qt::CaseInsensitive) ||
        start.contains(QLatin1String("\nDialogue:")))
        return "ass";
    if (start.contains(QLatin1String("-->")))
        return "srt";
    if (start.contains(microDvd))
        return "microdvd";
    if (start.contains(mpl2))
        return "mpl2";
    return start.contains(subViewer) ? "subviewer" : nullptr;
}

bool markupOf(AVCodecID codec, Markup &markup) {
    switch (codec) {
    case AV_CODEC_ID_SUBRIP:
    case AV_CODEC_ID_TEXT:
        markup = Markup::SubRip;
        return true;
    case AV_CODEC_ID_SUBVIEWER:
    case AV_CODEC_ID_MPL2:
    case AV_CODEC_ID_MICRODVD:
        markup = Markup::MicroDvd;
        return true;
    case AV_CODEC_ID_WEBVTT:
        markup = Markup::WebVtt;
        return true;
    case AV_CODEC_ID_ASS:
        markup = Markup::Ass;
        return true;
    case AV_CODEC_ID_MOV_TEXT:
        markup = Markup::MovText;
        return true;
    default:
        return false;
    }
}

// The packet holds "ReadOrder,Layer," and then the file's own fields from the third on; most files have the
// standard ten fields, whose text comes after the eighth comma.
int assTextField(const AVCodecParameters &codec) {
    constexpr int standard = 8;
    const QByteArray header(reinterpret_cast<const char *>(codec.extradata), codec.extradata_size);
    const qsizetype events = header.indexOf("[Events]");
    const qsizetype format = events < 0 ? -1 : header.indexOf("Format:", events);
    if (format < 0)
        return standard;
    const qsizetype lineEnd = header.indexOf('\n', format);
    const QByteArray line = header.mid(format, lineEnd < 0 ? -1 : lineEnd - format);
    // Start and End are not in the packet, ReadOrder is: the text comes one field earlier than in the file.
    return std::max(0, static_cast<int>(line.count(',')) - 1);
}

std::unique_ptr<AVFormatContext, InputCloser> openText(AVIOContext &io, const char *format,
                                                       FrameRate filmRate) {
    AVFormatContext *raw = avformat_alloc_context();
    if (raw == nullptr)
        return nullptr;
    raw->pb = &io;
    AVDictionary *options = nullptr;
    if (std::strcmp(format, "microdvd") == 0 && filmRate.numerator > 0) {
        const QByteArray rate =
            QByteArray::number(filmRate.numerator) + '/' + QByteArray::number(filmRate.denominator);
        av_dict_set(&options, "subfps", rate.constData(),
                    0); // counts only where the file says nothing itself
    }
    const int opened = avformat_open_input(&raw, "", av_find_input_format(format), &options);
    av_dict_free(&options);
    return std::unique_ptr<AVFormatContext, InputCloser>(opened < 0 ? nullptr : raw);
}

QList<Cue> cuesOf(AVFormatContext &input) {
    Markup markup{};
    if (input.nb_streams == 0 || !markupOf(input.streams[0]->codecpar->codec_id, markup))
        return {};
    const AVStream &stream = *input.streams[0];
    const int textField = markup == Markup::Ass ? assTextField(*stream.codecpar) : 0;
    constexpr AVRational milliseconds{1, 1000};
    const std::unique_ptr<AVPacket, PacketFreer> packet(av_packet_alloc());
    QList<Cue> cues;
    while (packet && cues.size() < mostCues && av_read_frame(&input, packet.get()) >= 0) {
        if (packet->pts != AV_NOPTS_VALUE && packet->data != nullptr) {
            const QByteArrayView bytes(packet->data, packet->size);
            const qint64 start = av_rescale_q(packet->pts, stream.time_base, milliseconds);
            const qint64 length = av_rescale_q(packet->duration, stream.time_base, milliseconds);
            cues.append({start, start + length, plainLines(bytes, markup, textField)});
        }
        av_packet_unref(packet.get());
    }
    return cues;
}

} // namespace

bool isPictureSubtitle(const QByteArray &fileBytes) {
    return fileBytes.startsWith(QByteArrayView("\0\0\x01\xBA", 4)) ||
           fileBytes.startsWith("# VobSub index file");
}

CueReading readCues(const QByteArray &fileBytes, FrameRate filmRate) {
    if (isPictureSubtitle(fileBytes))
        return {{}, CueProblem::PictureSubtitle};
    QByteArray text = toUtf8(fileBytes);
    const char *format = formatName(text);
    if (format == nullptr)
        return {{}, CueProblem::UnknownFormat};
    if (std::strcmp(format, "webvtt") == 0)
        text = cueBlocksOnly(text);

    MemoryFile file{text};
    const std::unique_ptr<AVIOContext, IoFreer> io(
        avio_alloc_context(static_cast<unsigned char *>(av_malloc(ioBufferBytes)), ioBufferBytes, 0, &file,
                           &MemoryFile::read, nullptr, &MemoryFile::seek));
    const auto input = io ? openText(*io, format, filmRate) : nullptr;
    CueReading reading{input ? inOrder(cuesOf(*input)) : QList<Cue>{}, CueProblem::None};
    if (reading.cues.isEmpty())
        reading.problem = CueProblem::NoCues;
    return reading;
}

} // namespace murvo::service
