// SPDX-License-Identifier: GPL-3.0-or-later
#include "Export/FilmClips.h"

#include "Export/Encoding.h"

#include <algorithm>
#include <cmath>

extern "C" {
#include <libavutil/channel_layout.h>
}

namespace murvo::service {

namespace {

using namespace std::chrono_literals;

constexpr int mostPictureWidth = 480;
constexpr qint64 longestSoundMs = 15'000;
constexpr auto timeToOpen = 5s;
constexpr auto timeForPicture = 2s;
constexpr auto timeForSound = 3s;
constexpr auto timeForLightPicture = 4s;
// Scenes by night have more.
constexpr int leastLightPercent = 4;
// Decoders need some sound before that which is wanted.
constexpr qint64 soundLeadMs = 500;
// Within this of the time, pictures on which no other is built are decoded, too.
constexpr qint64 nearMs = 400;
// A picture from before this shows something else.
constexpr qint64 farthestPictureMs = 10'000;
constexpr AVRational milliseconds{1, 1000};

const AVStream *picturesOf(const AVFormatContext &input) {
    for (unsigned i = 0; i < input.nb_streams; ++i) {
        const AVStream *stream = input.streams[i];
        const bool isCover = (stream->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
        if (stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO && !isCover)
            return stream;
    }
    return nullptr;
}

const AVStream *soundsOf(const AVFormatContext &input) {
    const AVStream *english = nullptr;
    for (unsigned i = 0; i < input.nb_streams; ++i) {
        const AVStream *stream = input.streams[i];
        if (stream->codecpar->codec_type != AVMEDIA_TYPE_AUDIO ||
            streamTag(*stream, "language") != QLatin1String("eng"))
            continue;
        if (english == nullptr || (stream->disposition & AV_DISPOSITION_DEFAULT) != 0)
            english = stream;
    }
    return english != nullptr ? english : soundOf(input, -1);
}

} // namespace

/// Gathers the samples between two times, one channel, silence where there is a hole.
class FilmClips::Voice {
  public:
    Voice(qint64 startMs, qint64 endMs)
        : _startMs(startMs)
        , _wanted(static_cast<std::size_t>((endMs - startMs) * mp3SampleRate / 1000)) {}

    /// False when there is enough, or the sound is of no usable kind.
    [[nodiscard]] bool add(const AVFrame &frame, qint64 frameMs) {
        if ((frame.format != _format || frame.sample_rate != _sampleRate ||
             frame.ch_layout.nb_channels != _channels) &&
            !open(frame))
            return false;
        std::vector<float> converted(
            static_cast<std::size_t>(std::max(0, swr_get_out_samples(_resampler.get(), frame.nb_samples))));
        auto *out = reinterpret_cast<uint8_t *>(converted.data());
        const int got = swr_convert(_resampler.get(), &out, static_cast<int>(converted.size()),
                                    const_cast<const uint8_t **>(frame.extended_data), frame.nb_samples);
        if (got < 0)
            return false;
        const qint64 at = (frameMs - _startMs) * mp3SampleRate / 1000;
        const auto reached = static_cast<qint64>(_samples.size());
        if (at > reached)
            _samples.resize(static_cast<std::size_t>(std::min(at, static_cast<qint64>(_wanted))), 0.0F);
        // Times in packets are rounded: what follows the last goes on without a seam.
        const qint64 early = _hasBegun ? 0 : std::max<qint64>(0, reached - at);
        if (early < got) {
            _hasBegun = true;
            _samples.insert(_samples.end(), converted.begin() + early, converted.begin() + got);
        }
        return _samples.size() < _wanted;
    }

    [[nodiscard]] std::vector<float> take() {
        _samples.resize(std::min(_samples.size(), _wanted));
        return _hasBegun ? std::move(_samples) : std::vector<float>();
    }

  private:
    [[nodiscard]] bool open(const AVFrame &frame) {
        AVChannelLayout layout{};
        if (av_channel_layout_check(&frame.ch_layout) == 0 ||
            frame.ch_layout.order == AV_CHANNEL_ORDER_UNSPEC)
            av_channel_layout_default(&layout, frame.ch_layout.nb_channels);
        else if (av_channel_layout_copy(&layout, &frame.ch_layout) < 0)
            return false;
        AVChannelLayout mono = AV_CHANNEL_LAYOUT_MONO;
        SwrContext *raw = nullptr;
        const int made =
            swr_alloc_set_opts2(&raw, &mono, AV_SAMPLE_FMT_FLT, mp3SampleRate, &layout,
                                static_cast<AVSampleFormat>(frame.format), frame.sample_rate, 0, nullptr);
        _resampler.reset(raw);
        av_channel_layout_uninit(&layout);
        _format = frame.format;
        _sampleRate = frame.sample_rate;
        _channels = frame.ch_layout.nb_channels;
        return made >= 0 && swr_init(raw) >= 0;
    }

    qint64 _startMs;
    std::size_t _wanted;
    std::vector<float> _samples;
    bool _hasBegun = false;
    Resampler _resampler;
    int _format = -1;
    int _sampleRate = 0;
    int _channels = 0;
};

FilmClips::FilmClips(const QString &filmPath, const std::atomic<bool> &isCancelled)
    : _isCancelled(isCancelled) {
    allow(timeToOpen);
    _input = openFilm(filmPath, [this] { return isLate(); });
    if (!_input || avformat_find_stream_info(_input.get(), nullptr) < 0)
        return;
    _pictures = picturesOf(*_input);
    _sounds = soundsOf(*_input);
    constexpr int threads = 2;
    _pictureDecoder = _pictures != nullptr ? openDecoder(*_pictures, threads) : nullptr;
    _soundDecoder = _sounds != nullptr ? openDecoder(*_sounds) : nullptr;
}

void FilmClips::allow(std::chrono::milliseconds time) {
    _deadline = std::chrono::steady_clock::now() + time;
}

bool FilmClips::isLate() const {
    return _isCancelled || std::chrono::steady_clock::now() > _deadline;
}

bool FilmClips::goTo(const AVStream &stream, qint64 ms) const {
    for (unsigned i = 0; i < _input->nb_streams; ++i)
        _input->streams[i]->discard = _input->streams[i] == &stream ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    const int64_t start = av_rescale_q(filmStart(*_input), AV_TIME_BASE_Q, stream.time_base);
    const int64_t at = start + av_rescale_q(std::max<qint64>(0, ms), milliseconds, stream.time_base);
    return av_seek_frame(_input.get(), stream.index, at, AVSEEK_FLAG_BACKWARD) >= 0;
}

int64_t FilmClips::filmMs(const AVFrame &frame, const AVStream &stream) const {
    return av_rescale_q(frame.best_effort_timestamp, stream.time_base, milliseconds) -
           av_rescale_q(filmStart(*_input), AV_TIME_BASE_Q, milliseconds);
}

template<typename Take>
void FilmClips::decode(const AVStream &stream, AVCodecContext &decoder, Take take) {
    avcodec_flush_buffers(&decoder);
    const Frame frame(av_frame_alloc());
    const Packet packet(av_packet_alloc());
    if (!frame || !packet)
        return;
    bool isMore = true;
    while (isMore && !isLate()) {
        isMore = av_read_frame(_input.get(), packet.get()) >= 0;
        if (isMore && packet->stream_index != stream.index) {
            av_packet_unref(packet.get());
            continue;
        }
        // At the end what the decoder still holds comes out. A damaged packet is passed over.
        std::ignore = avcodec_send_packet(&decoder, isMore ? packet.get() : nullptr);
        av_packet_unref(packet.get());
        while (avcodec_receive_frame(&decoder, frame.get()) >= 0) {
            const bool hasTime = frame->best_effort_timestamp != AV_NOPTS_VALUE;
            if (hasTime && !take(*frame))
                return;
        }
    }
}

Frame FilmClips::frameAt(qint64 atMs) {
    if (!_pictureDecoder || !goTo(*_pictures, atMs))
        return nullptr;
    Frame nearest(av_frame_alloc());
    if (!nearest)
        return nullptr;
    bool isThere = false;
    int64_t nearestMs = 0;
    decode(*_pictures, *_pictureDecoder, [&](AVFrame &frame) {
        const int64_t ms = filmMs(frame, *_pictures);
        _pictureDecoder->skip_frame = atMs - ms > nearMs ? AVDISCARD_NONREF : AVDISCARD_DEFAULT;
        if (isThere && ms > atMs)
            return false;
        av_frame_unref(nearest.get());
        av_frame_move_ref(nearest.get(), &frame);
        isThere = true;
        nearestMs = ms;
        return ms < atMs;
    });
    if (!isThere || _isCancelled || atMs - nearestMs > farthestPictureMs)
        return nullptr;
    if (nearest->sample_aspect_ratio.num == 0)
        nearest->sample_aspect_ratio = _pictures->sample_aspect_ratio;
    return nearest;
}

QByteArray FilmClips::picture(qint64 atMs) {
    allow(timeForPicture);
    const Frame frame = frameAt(atMs);
    return frame ? jpegOf(*frame, mostPictureWidth) : QByteArray();
}

// What was seen already comes before what is still to be seen.
QByteArray FilmClips::lightPicture(qint64 atMs) {
    const auto limit = std::chrono::steady_clock::now() + timeForLightPicture;
    Frame lightest;
    int lightestPercent = -1;
    for (const qint64 awayMs : {0, -2000, 2000, -6000, 6000, -15'000, 15'000}) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(limit - std::chrono::steady_clock::now());
        if (lightestPercent >= leastLightPercent || left <= 0ms || _isCancelled)
            break;
        if (awayMs < 0 && atMs == 0)
            continue;
        allow(std::min<std::chrono::milliseconds>(left, timeForPicture));
        Frame frame = frameAt(std::max<qint64>(0, atMs + awayMs));
        const int percent = frame ? lightPercentOf(*frame) : -1;
        if (percent <= lightestPercent)
            continue;
        lightest = std::move(frame);
        lightestPercent = percent;
    }
    return lightest ? jpegOf(*lightest, mostPictureWidth) : QByteArray();
}

QByteArray FilmClips::sound(qint64 startMs, qint64 endMs) {
    allow(timeForSound);
    startMs = std::max<qint64>(0, startMs);
    endMs = std::min(endMs, startMs + longestSoundMs);
    if (!_soundDecoder || endMs <= startMs || !goTo(*_sounds, startMs - soundLeadMs))
        return {};
    Voice voice(startMs, endMs);
    decode(*_sounds, *_soundDecoder,
           [&](const AVFrame &frame) { return voice.add(frame, filmMs(frame, *_sounds)); });
    return _isCancelled ? QByteArray() : mp3Of(voice.take());
}

} // namespace murvo::service
