// SPDX-License-Identifier: GPL-3.0-or-later
#include "Sources/Decoding.h"

#include <utility>

namespace murvo::service {

namespace {

bool isSound(const AVStream &stream) {
    return stream.codecpar->codec_type == AVMEDIA_TYPE_AUDIO;
}

/// Containers without headers tell of their streams only when some packets have been looked at.
bool tellsEnough(const AVStream *sound) {
    return sound != nullptr && sound->codecpar->sample_rate > 0 && sound->codecpar->ch_layout.nb_channels > 0;
}

// Of any film; a crafted one may ask for the whole memory.
constexpr int64_t mostPixels = 8192 * 4320 * 2;

} // namespace

Decoder openDecoder(const AVStream &stream, int threads) {
    const AVCodec *codec = avcodec_find_decoder(stream.codecpar->codec_id);
    Decoder decoder(codec == nullptr ? nullptr : avcodec_alloc_context3(codec));
    if (!decoder || avcodec_parameters_to_context(decoder.get(), stream.codecpar) < 0)
        return nullptr;
    decoder->pkt_timebase = stream.time_base;
    decoder->thread_count = threads;
    decoder->max_pixels = mostPixels;
    return avcodec_open2(decoder.get(), codec, nullptr) < 0 ? nullptr : std::move(decoder);
}

/// Streams that count from when they were sent begin anywhere; the player starts such a film at 0, too.
int64_t filmStart(const AVFormatContext &input) {
    const bool countsFromAnywhere = (input.iformat->flags & AVFMT_TS_DISCONT) != 0;
    return countsFromAnywhere && input.start_time != AV_NOPTS_VALUE ? input.start_time : 0;
}

const AVStream *soundOf(const AVFormatContext &input, int streamIndex) {
    if (streamIndex >= 0) {
        const bool isThere = static_cast<unsigned>(streamIndex) < input.nb_streams;
        return isThere && isSound(*input.streams[streamIndex]) ? input.streams[streamIndex] : nullptr;
    }
    const AVStream *first = nullptr;
    for (unsigned i = 0; i < input.nb_streams; ++i) {
        const AVStream *stream = input.streams[i];
        if (!isSound(*stream))
            continue;
        if ((stream->disposition & AV_DISPOSITION_DEFAULT) != 0)
            return stream;
        if (first == nullptr)
            first = stream;
    }
    return first;
}

const AVStream *chooseSound(AVFormatContext &input, int streamIndex) {
    const bool hasAnyStart = (input.iformat->flags & AVFMT_TS_DISCONT) != 0;
    if (!hasAnyStart && tellsEnough(soundOf(input, streamIndex)))
        return soundOf(input, streamIndex);
    return avformat_find_stream_info(&input, nullptr) < 0 ? nullptr : soundOf(input, streamIndex);
}

} // namespace murvo::service
