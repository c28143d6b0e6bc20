// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswresample/swresample.h>
}

namespace murvo::service {

// What decoding the sound and the pictures of an opened film takes, wherever it is done. Each object belongs
// to one thread at a time.

struct DecoderCloser {
    void operator()(AVCodecContext *decoder) const { avcodec_free_context(&decoder); }
};
struct ResamplerCloser {
    void operator()(SwrContext *resampler) const { swr_free(&resampler); }
};
struct FrameCloser {
    void operator()(AVFrame *frame) const { av_frame_free(&frame); }
};
struct PacketCloser {
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
};
using Decoder = std::unique_ptr<AVCodecContext, DecoderCloser>;
using Resampler = std::unique_ptr<SwrContext, ResamplerCloser>;
using Frame = std::unique_ptr<AVFrame, FrameCloser>;
using Packet = std::unique_ptr<AVPacket, PacketCloser>;

/// For a stream of an opened film; null when there is no decoder for it. Of threads 0 is as many as the
/// machine has.
[[nodiscard]] Decoder openDecoder(const AVStream &stream, int threads = 1);

/// The time that the player shows as 0, in AV_TIME_BASE.
[[nodiscard]] int64_t filmStart(const AVFormatContext &input);

/// The sound track of that index, else the default one, by what is known of the film so far; null when there
/// is none.
[[nodiscard]] const AVStream *soundOf(const AVFormatContext &input, int streamIndex);

/// The same, looked for in the film's packets where its headers do not tell enough. Not for a film whose
/// packets have been looked at: the library does not survive that twice.
[[nodiscard]] const AVStream *chooseSound(AVFormatContext &input, int streamIndex);

} // namespace murvo::service
