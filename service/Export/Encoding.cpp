// SPDX-License-Identifier: GPL-3.0-or-later
#include "Export/Encoding.h"

#include "Sources/Decoding.h"

#include <algorithm>
#include <cmath>
#include <numeric>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libswscale/swscale.h>
}

namespace murvo::service {

namespace {

// 2 is the best that JPEG has, 31 the worst: a picture of 480 x 270 takes about 25 KB.
constexpr int pictureQuality = 4;
constexpr int soundBitsPerSecond = 80'000;
constexpr int narrowest = 16;

struct ScalerCloser {
    void operator()(SwsContext *scaler) const { sws_freeContext(scaler); }
};
using Scaler = std::unique_ptr<SwsContext, ScalerCloser>;
using Encoder = Decoder; // the library has one kind of object for both

Encoder encoderNamed(const char *name) {
    const AVCodec *codec = avcodec_find_encoder_by_name(name);
    return Encoder(codec == nullptr ? nullptr : avcodec_alloc_context3(codec));
}

/// Takes out what the encoder has ready.
void drain(AVCodecContext &encoder, AVPacket &packet, QByteArray &file) {
    while (avcodec_receive_packet(&encoder, &packet) >= 0) {
        file.append(reinterpret_cast<const char *>(packet.data), packet.size);
        av_packet_unref(&packet);
    }
}

struct Size {
    int width = 0;
    int height = 0;
};

/// Even numbers: the picture's colours are kept at half its size.
Size shownSize(const AVFrame &frame, int mostWidth) {
    const AVRational aspect = frame.sample_aspect_ratio;
    const bool isStretched = aspect.num > 0 && aspect.den > 0;
    const double shownWidth = frame.width * (isStretched ? av_q2d(aspect) : 1.0);
    const double scale = std::min(1.0, mostWidth / shownWidth);
    const auto even = [](double length) {
        return std::max(narrowest, 2 * static_cast<int>(std::lround(length / 2)));
    };
    return {even(shownWidth * scale), std::min(even(frame.height * scale), 4 * mostWidth)};
}

Frame scaled(const AVFrame &frame, Size size) {
    Frame picture(av_frame_alloc());
    if (!picture)
        return nullptr;
    picture->format = AV_PIX_FMT_YUVJ420P;
    picture->width = size.width;
    picture->height = size.height;
    const Scaler scaler(sws_getContext(frame.width, frame.height, static_cast<AVPixelFormat>(frame.format),
                                       size.width, size.height, AV_PIX_FMT_YUVJ420P, SWS_BICUBIC, nullptr,
                                       nullptr, nullptr));
    if (!scaler || av_frame_get_buffer(picture.get(), 0) < 0 ||
        sws_scale(scaler.get(), frame.data, frame.linesize, 0, frame.height, picture->data,
                  picture->linesize) <= 0)
        return nullptr;
    return picture;
}

Encoder openMp3Encoder() {
    Encoder encoder = encoderNamed("libmp3lame");
    if (!encoder)
        return nullptr;
    encoder->bit_rate = soundBitsPerSecond;
    encoder->sample_rate = mp3SampleRate;
    encoder->sample_fmt = AV_SAMPLE_FMT_FLTP;
    encoder->time_base = {1, mp3SampleRate};
    encoder->ch_layout = AV_CHANNEL_LAYOUT_MONO;
    return avcodec_open2(encoder.get(), nullptr, nullptr) < 0 ? nullptr : std::move(encoder);
}

/// The next of the samples, with silence behind the last.
bool fill(AVFrame &frame, const AVCodecContext &encoder, const std::vector<float> &samples,
          std::size_t from) {
    frame.nb_samples = encoder.frame_size;
    frame.format = encoder.sample_fmt;
    frame.sample_rate = encoder.sample_rate;
    if (av_channel_layout_copy(&frame.ch_layout, &encoder.ch_layout) < 0 ||
        av_frame_get_buffer(&frame, 0) < 0)
        return false;
    const auto room = static_cast<std::size_t>(frame.nb_samples);
    auto *to = reinterpret_cast<float *>(frame.data[0]);
    const std::size_t count = std::min(room, samples.size() - from);
    std::fill(std::copy_n(samples.data() + from, count, to), to + room, 0.0F);
    frame.pts = static_cast<int64_t>(from);
    return true;
}

} // namespace

QByteArray jpegOf(const AVFrame &frame, int mostWidth) {
    if (frame.width <= 0 || frame.height <= 0)
        return {};
    const Frame picture = scaled(frame, shownSize(frame, mostWidth));
    const Encoder encoder = encoderNamed("mjpeg");
    const Packet packet(av_packet_alloc());
    if (!picture || !encoder || !packet)
        return {};
    encoder->width = picture->width;
    encoder->height = picture->height;
    encoder->pix_fmt = AV_PIX_FMT_YUVJ420P;
    encoder->time_base = {1, 1};
    encoder->flags |= AV_CODEC_FLAG_QSCALE;
    encoder->global_quality = picture->quality = pictureQuality * FF_QP2LAMBDA;
    QByteArray file;
    if (avcodec_open2(encoder.get(), nullptr, nullptr) >= 0 &&
        avcodec_send_frame(encoder.get(), picture.get()) >= 0 &&
        avcodec_send_frame(encoder.get(), nullptr) >= 0)
        drain(*encoder, *packet, file);
    return file;
}

int lightPercentOf(const AVFrame &frame) {
    constexpr int enoughWidth = 64;
    if (frame.width <= 0 || frame.height <= 0)
        return 0;
    const Frame picture = scaled(frame, shownSize(frame, enoughWidth));
    if (!picture)
        return 0;
    qint64 sum = 0;
    for (int y = 0; y < picture->height; ++y) {
        const uint8_t *row = picture->data[0] + static_cast<ptrdiff_t>(y) * picture->linesize[0];
        sum = std::accumulate(row, row + picture->width, sum);
    }
    const qint64 white = qint64{255} * picture->width * picture->height;
    return static_cast<int>(100 * sum / white);
}

QByteArray mp3Of(const std::vector<float> &samples) {
    const Encoder encoder = samples.empty() ? nullptr : openMp3Encoder();
    const Packet packet(av_packet_alloc());
    if (!encoder || !packet)
        return {};
    QByteArray file;
    for (std::size_t from = 0; from < samples.size(); from += static_cast<std::size_t>(encoder->frame_size)) {
        const Frame frame(av_frame_alloc());
        if (!frame || !fill(*frame, *encoder, samples, from) ||
            avcodec_send_frame(encoder.get(), frame.get()) < 0)
            return {};
        drain(*encoder, *packet, file);
    }
    if (avcodec_send_frame(encoder.get(), nullptr) >= 0)
        drain(*encoder, *packet, file);
    return file;
}

} // namespace murvo::service
