// SPDX-License-Identifier: GPL-3.0-or-later
#include "Timing/SpeechActivity.h"

#include "Sources/Decoding.h"
#include "Sources/FilmInput.h"
#include "Timing/SpeechBands.h"

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <utility>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libswresample/swresample.h>
}

namespace murvo::service {

namespace {

constexpr AVRational samples{1, SpeechBands::sampleRate};
// What a broken file claims must not overflow.
constexpr int64_t farthestSamples = std::numeric_limits<int64_t>::max() / 4;
// What lies behind is not listened to.
constexpr int64_t longestFilmSamples = 12LL * 3600 * SpeechBands::sampleRate;
// Times in packets are rounded; only what is more is a hole in the sound.
constexpr int64_t smallestHoleSamples = SpeechBands::sampleRate / 20;

/// Brings decoded frames of any kind to one voice at the bands' sample rate and puts them where they belong
/// in time.
class Mixer {
  public:
    Mixer(SpeechBands &bands, AVRational timeBase, int64_t startSamples)
        : _bands(bands)
        , _timeBase(timeBase)
        , _startSamples(startSamples) {}

    /// False when the film is too long or the sound of no usable kind.
    [[nodiscard]] bool add(const AVFrame &frame) {
        if (!isSameKind(frame) && !open(frame))
            return false;
        if (frame.best_effort_timestamp != AV_NOPTS_VALUE && !moveTo(frame))
            return false;
        return convert(frame.extended_data, frame.nb_samples);
    }

    void finish() {
        if (_resampler)
            (void)convert(nullptr, 0);
    }

  private:
    [[nodiscard]] bool isSameKind(const AVFrame &frame) const {
        return _resampler && frame.format == _format && frame.sample_rate == _sampleRate &&
               frame.ch_layout.nb_channels == _channels;
    }

    bool open(const AVFrame &frame) {
        finish();
        AVChannelLayout layout{};
        if (frame.ch_layout.order == AV_CHANNEL_ORDER_UNSPEC ||
            av_channel_layout_check(&frame.ch_layout) == 0)
            av_channel_layout_default(&layout, frame.ch_layout.nb_channels);
        else if (av_channel_layout_copy(&layout, &frame.ch_layout) < 0)
            return false;
        AVChannelLayout mono = AV_CHANNEL_LAYOUT_MONO;
        SwrContext *raw = nullptr;
        const int made =
            swr_alloc_set_opts2(&raw, &mono, AV_SAMPLE_FMT_FLT, SpeechBands::sampleRate, &layout,
                                static_cast<AVSampleFormat>(frame.format), frame.sample_rate, 0, nullptr);
        _resampler.reset(raw);
        const bool isOpen = made >= 0 && weighChannels(layout) && swr_init(raw) >= 0;
        av_channel_layout_uninit(&layout);
        _format = frame.format;
        _sampleRate = frame.sample_rate;
        _channels = frame.ch_layout.nb_channels;
        return isOpen;
    }

    /// Films with many channels keep the voices in the middle one.
    bool weighChannels(const AVChannelLayout &layout) {
        if (av_channel_layout_index_from_channel(&layout, AV_CHAN_FRONT_CENTER) < 0 || layout.nb_channels < 3)
            return true;
        std::array<double, 64> weights{};
        if (static_cast<std::size_t>(layout.nb_channels) > weights.size())
            return false;
        for (int i = 0; i < layout.nb_channels; ++i) {
            const AVChannel channel = av_channel_layout_channel_from_index(&layout, static_cast<unsigned>(i));
            const bool isFront = channel == AV_CHAN_FRONT_LEFT || channel == AV_CHAN_FRONT_RIGHT;
            weights[static_cast<std::size_t>(i)] = channel == AV_CHAN_FRONT_CENTER ? 0.8 : isFront ? 0.1 : 0;
        }
        return swr_set_matrix(_resampler.get(), weights.data(), layout.nb_channels) >= 0;
    }

    /// Fills a hole before the frame with silence; sound that would lie where some is already is dropped.
    bool moveTo(const AVFrame &frame) {
        const int64_t claimed = av_rescale_q(frame.best_effort_timestamp, _timeBase, samples);
        const int64_t wanted = std::clamp(claimed, -farthestSamples, farthestSamples) - _startSamples;
        const int64_t waiting = swr_get_delay(_resampler.get(), SpeechBands::sampleRate);
        const int64_t reached = static_cast<int64_t>(_bands.sampleCount()) + waiting;
        if (wanted > longestFilmSamples)
            return false;
        _toDrop = reached - wanted > smallestHoleSamples ? reached - wanted : 0;
        if (wanted - reached > smallestHoleSamples)
            _bands.addSilence(static_cast<std::size_t>(wanted - reached));
        return true;
    }

    /// Without data it takes out what the resampler still holds.
    bool convert(const uint8_t *const *data, int count) {
        const int most = swr_get_out_samples(_resampler.get(), count);
        if (most < 0)
            return false;
        _voice.resize(static_cast<std::size_t>(most));
        auto *out = reinterpret_cast<uint8_t *>(_voice.data());
        const int got = swr_convert(_resampler.get(), &out, most, const_cast<const uint8_t **>(data), count);
        if (got < 0)
            return false;
        const auto dropped = static_cast<std::size_t>(std::min<int64_t>(_toDrop, got));
        _toDrop -= static_cast<int64_t>(dropped);
        _bands.addSamples(_voice.data() + dropped, static_cast<std::size_t>(got) - dropped);
        return true;
    }

    SpeechBands &_bands;
    AVRational _timeBase;
    int64_t _startSamples;
    int64_t _toDrop = 0; ///< samples to come
    std::vector<float> _voice;
    Resampler _resampler;
    int _format = -1;
    int _sampleRate = 0;
    int _channels = 0;
};

/// False when nothing more can be taken. A damaged packet is passed over.
bool decode(AVCodecContext &decoder, const AVPacket *packet, AVFrame &frame, Mixer &mixer) {
    if (avcodec_send_packet(&decoder, packet) < 0)
        return true;
    while (avcodec_receive_frame(&decoder, &frame) >= 0) {
        if (!mixer.add(frame))
            return false;
    }
    return true;
}

} // namespace

std::optional<SpeechActivity> findSpeech(const QString &filmPath, int streamIndex,
                                         const std::function<void(double share)> &progress,
                                         const std::atomic<bool> &isCancelled) {
    const FilmInput input = openFilm(filmPath, [&isCancelled] { return isCancelled.load(); });
    const AVStream *sound = input ? chooseSound(*input, streamIndex) : nullptr;
    const Decoder decoder = sound != nullptr ? openDecoder(*sound) : nullptr;
    const Frame frame(av_frame_alloc());
    const Packet packet(av_packet_alloc());
    if (!decoder || !frame || !packet)
        return std::nullopt;
    for (unsigned i = 0; i < input->nb_streams; ++i)
        input->streams[i]->discard = input->streams[i] == sound ? AVDISCARD_DEFAULT : AVDISCARD_ALL;

    const int64_t lengthSamples = std::clamp<int64_t>(av_rescale_q(input->duration, AV_TIME_BASE_Q, samples),
                                                      SpeechBands::sampleRate, longestFilmSamples);
    SpeechBands bands(static_cast<std::size_t>(lengthSamples) / SpeechBands::frameSamples + 1);
    Mixer mixer(bands, sound->time_base, av_rescale_q(filmStart(*input), AV_TIME_BASE_Q, samples));
    bool goesOn = true;
    while (goesOn && !isCancelled && av_read_frame(input.get(), packet.get()) >= 0) {
        if (packet->stream_index == sound->index)
            goesOn = decode(*decoder, packet.get(), *frame, mixer);
        av_packet_unref(packet.get());
        progress(
            std::min(1.0, static_cast<double>(bands.sampleCount()) / static_cast<double>(lengthSamples)));
    }
    if (goesOn && !isCancelled)
        (void)decode(*decoder, nullptr, *frame, mixer);
    mixer.finish();
    if (isCancelled || bands.sampleCount() < SpeechBands::frameSamples)
        return std::nullopt;
    return bands.activity();
}

} // namespace murvo::service
