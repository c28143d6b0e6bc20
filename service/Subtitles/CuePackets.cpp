// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/CuePackets.h"

#include "Subtitles/Charset.h"
#include "Subtitles/ClockTime.h"
#include "Subtitles/MovText.h"

#include <algorithm>

extern "C" {
#include <libavcodec/packet.h>
#include <libavformat/avformat.h>
}

namespace murvo::service {

namespace {

constexpr qsizetype mostBytesOfPacket = 65'536;

std::optional<Markup> markupOf(AVCodecID codec) {
    switch (codec) {
    case AV_CODEC_ID_SUBRIP:
    case AV_CODEC_ID_TEXT:
    case AV_CODEC_ID_STL:
    case AV_CODEC_ID_REALTEXT:
        return Markup::SubRip;
    case AV_CODEC_ID_SUBVIEWER:
    case AV_CODEC_ID_SUBVIEWER1:
    case AV_CODEC_ID_PJS:
        return Markup::SubViewer;
    case AV_CODEC_ID_MPL2:
    case AV_CODEC_ID_MICRODVD:
    case AV_CODEC_ID_VPLAYER:
        return Markup::MicroDvd;
    case AV_CODEC_ID_WEBVTT:
        return Markup::WebVtt;
    case AV_CODEC_ID_SAMI:
        return Markup::Sami;
    default:
        return std::nullopt;
    }
}

QByteArray extraData(const AVCodecParameters &codec) {
    return {reinterpret_cast<const char *>(codec.extradata),
            codec.extradata == nullptr ? 0 : codec.extradata_size};
}

} // namespace

CuePackets::CuePackets(const AVStream &stream)
    : _timeBaseNumerator(stream.time_base.num)
    , _timeBaseDenominator(stream.time_base.den) {}

std::optional<CuePackets> CuePackets::of(const AVStream &stream) {
    if (stream.time_base.num <= 0 || stream.time_base.den <= 0)
        return std::nullopt;
    const AVCodecParameters &codec = *stream.codecpar;
    CuePackets packets(stream);
    if (const auto markup = markupOf(codec.codec_id)) {
        packets._markup = *markup;
    } else if (codec.codec_id == AV_CODEC_ID_ASS || codec.codec_id == AV_CODEC_ID_SSA) {
        packets._form = Form::Script;
        packets._script = AssScript(QString::fromUtf8(toUtf8(extraData(codec))));
    } else if (codec.codec_id == AV_CODEC_ID_MOV_TEXT) {
        packets._form = Form::MovText;
        packets._movDescription = extraData(codec);
    } else {
        return std::nullopt;
    }
    return packets;
}

Cue CuePackets::read(const AVPacket &packet) const {
    if (packet.data == nullptr || packet.size <= 0 || packet.pts == AV_NOPTS_VALUE)
        return {};
    constexpr AVRational milliseconds{1, 1000};
    const AVRational timeBase{_timeBaseNumerator, _timeBaseDenominator};
    Cue cue;
    cue.startMs = std::clamp<qint64>(av_rescale_q(packet.pts, timeBase, milliseconds), -latestMs, latestMs);
    const qint64 length = av_rescale_q(std::max<int64_t>(packet.duration, 0), timeBase, milliseconds);
    cue.endMs = cue.startMs + std::clamp<qint64>(length, 0, latestMs);

    const QByteArrayView bytes(packet.data, std::min<qsizetype>(packet.size, mostBytesOfPacket));
    if (_form == Form::MovText) {
        readMovText(bytes, _movDescription).tidyInto(cue);
        return cue;
    }
    // Tracks of old films may hold another encoding than the one that their container demands.
    const QString text = QString::fromUtf8(toUtf8(bytes.toByteArray()));
    if (_form == Form::Script)
        _script.readEvent(text).tidyInto(cue);
    else
        readMarkup(text, _markup).tidyInto(cue);
    return cue;
}

} // namespace murvo::service
