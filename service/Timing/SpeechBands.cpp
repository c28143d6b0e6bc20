// SPDX-License-Identifier: GPL-3.0-or-later
#include "Timing/SpeechBands.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <utility>

namespace murvo::service {

namespace {

struct Band {
    float fromHz;
    float toHz;
};
constexpr std::array<Band, SpeechBands::bandCount> bands{
    {{250, 600}, {600, 1'200}, {1'200, 2'100}, {2'100, 3'400}}};

constexpr int stepsPerDecibel = 2;
constexpr float lowestDecibel = -127;

// What counts of how far a band is above its background.
constexpr int leastAbove = 3 * stepsPerDecibel; // noise itself does that
constexpr int mostAbove = 18 * stepsPerDecibel; // more says no more
constexpr int hearable = 45 * stepsPerDecibel;  // nobody is heard that far below the film's loud places

// What surrounds a frame: the quiet tenth of the seconds around it, words having pauses between them.
constexpr std::size_t backgroundReach = 500;
constexpr double backgroundShare = 0.1;

std::uint8_t loudnessOf(float energy) {
    const float decibel = 10 * std::log10(energy / SpeechBands::frameSamples + 1e-13F);
    return static_cast<std::uint8_t>(
        std::clamp(std::lround((decibel - lowestDecibel) * stepsPerDecibel), 0L, 255L));
}

/// Counts of loudnesses in a window that moves along the film.
class Histogram {
  public:
    void add(std::uint8_t loudness) {
        ++_counts[loudness];
        ++_total;
    }
    void remove(std::uint8_t loudness) {
        --_counts[loudness];
        --_total;
    }
    /// The loudness below which that share of the counted lies.
    [[nodiscard]] int quantile(double share) const {
        const auto wanted = static_cast<int>(share * _total);
        int seen = 0;
        for (int loudness = 0; loudness < 256; ++loudness) {
            seen += _counts[static_cast<std::size_t>(loudness)];
            if (seen > wanted)
                return loudness;
        }
        return 255;
    }

  private:
    std::array<int, 256> _counts{};
    int _total = 0;
};

/// The quiet part of the seconds around each frame of one band.
class Background {
  public:
    using LoudnessAt = std::function<std::uint8_t(std::size_t frame)>;

    Background(std::size_t frames, LoudnessAt loudnessAt)
        : _frames(frames)
        , _loudnessAt(std::move(loudnessAt)) {
        Histogram whole;
        for (std::size_t i = 0; i < frames; ++i)
            whole.add(_loudnessAt(i));
        _lowest = whole.quantile(0.95) - hearable;
        for (std::size_t i = 0; i < std::min(backgroundReach, frames); ++i)
            _around.add(_loudnessAt(i));
    }

    /// Called for each frame, one after the other.
    [[nodiscard]] float shareAbove(std::size_t frame) {
        if (frame + backgroundReach < _frames)
            _around.add(_loudnessAt(frame + backgroundReach));
        if (frame > backgroundReach)
            _around.remove(_loudnessAt(frame - backgroundReach - 1));
        const int background = std::max(_around.quantile(backgroundShare), _lowest);
        const int above = std::clamp(_loudnessAt(frame) - background, leastAbove, mostAbove);
        return static_cast<float>(above - leastAbove) / (mostAbove - leastAbove);
    }

  private:
    std::size_t _frames;
    LoudnessAt _loudnessAt;
    Histogram _around;
    int _lowest = 0;
};

} // namespace

SpeechBands::SpeechBands(std::size_t expectedFrames) {
    for (std::size_t i = 0; i < bandCount; ++i) {
        const float centreHz = std::sqrt(bands[i].fromHz * bands[i].toHz);
        const float quality = centreHz / (bands[i].toHz - bands[i].fromHz);
        const float angle = 2 * std::numbers::pi_v<float> * centreHz / sampleRate;
        const float alpha = std::sin(angle) / (2 * quality);
        _filters[i].gain = alpha / (1 + alpha);
        _filters[i].feedback1 = 2 * std::cos(angle) / (1 + alpha);
        _filters[i].feedback2 = (alpha - 1) / (1 + alpha);
    }
    _frames.reserve(expectedFrames);
}

float SpeechBands::Filter::pass(float in) {
    const float out = gain * (in - in2) + feedback1 * out1 + feedback2 * out2;
    in2 = in1;
    in1 = in;
    out2 = out1;
    out1 = out;
    return out;
}

void SpeechBands::addSamples(const float *samples, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        add(samples[i]);
}

void SpeechBands::addSilence(std::size_t sampleCount) {
    for (std::size_t i = 0; i < sampleCount; ++i)
        add(0);
}

void SpeechBands::add(float sample) {
    // A broken sound file may hold anything, and what is not a number would stay in the filters for good. The
    // little that is added keeps them out of the range where processors are slow.
    const float in = std::isfinite(sample) ? std::clamp(sample, -4.0F, 4.0F) + 1e-9F : 0.0F;
    for (std::size_t i = 0; i < bandCount; ++i) {
        const float out = _filters[i].pass(in);
        _energies[i] += out * out;
    }
    if (++_samples % frameSamples == 0)
        endFrame();
}

void SpeechBands::endFrame() {
    Loudness loudness{};
    for (std::size_t i = 0; i < bandCount; ++i)
        loudness[i] = loudnessOf(_energies[i]);
    _frames.push_back(loudness);
    _energies.fill(0);
}

SpeechActivity SpeechBands::activity() const {
    std::vector<Background> backgrounds;
    for (std::size_t band = 0; band < bandCount; ++band)
        backgrounds.emplace_back(_frames.size(),
                                 [this, band](std::size_t frame) { return _frames[frame][band]; });
    SpeechActivity activity;
    activity.frameMs = frameMs;
    activity.likelihood.reserve(_frames.size());
    std::array<float, bandCount> shares{};
    for (std::size_t frame = 0; frame < _frames.size(); ++frame) {
        for (std::size_t band = 0; band < bandCount; ++band)
            shares[band] = backgrounds[band].shareAbove(frame);
        // One band alone may be an instrument; all four at once are rare even in a voice.
        std::partial_sort(shares.begin(), shares.begin() + 2, shares.end(), std::greater<>());
        activity.likelihood.push_back((shares[0] + shares[1]) / 2);
    }
    return activity;
}

} // namespace murvo::service
