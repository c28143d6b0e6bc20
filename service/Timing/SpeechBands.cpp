// SPDX-License-Identifier: GPL-3.0-or-later
#include "Timing/SpeechBands.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace murvo::service {

namespace {

struct Band {
    float fromHz;
    float toHz;
};
constexpr std::array<Band, SpeechBands::bandCount> bands{
    {{250, 600}, {600, 1'200}, {1'200, 2'100}, {2'100, 3'400}}};

constexpr float stepsPerDecibel = 2;
constexpr float lowestDecibel = -127;

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
    constexpr float leastDecibel = 3;     // above the background: noise itself does that
    constexpr float mostDecibel = 18;     // more says no more
    constexpr float hearableDecibel = 45; // below the film's loud places nobody is heard
    SpeechActivity activity;
    activity.frameMs = frameMs;
    activity.likelihood.assign(_frames.size(), 0.0F);
    for (std::size_t band = 0; band < bandCount; ++band) {
        Histogram whole;
        for (const Loudness &frame : _frames)
            whole.add(frame[band]);
        const float lowest = static_cast<float>(whole.quantile(0.95)) - hearableDecibel * stepsPerDecibel;
        Histogram around;
        for (std::size_t i = 0; i < std::min(backgroundReach, _frames.size()); ++i)
            around.add(_frames[i][band]);
        for (std::size_t i = 0; i < _frames.size(); ++i) {
            if (i + backgroundReach < _frames.size())
                around.add(_frames[i + backgroundReach][band]);
            if (i > backgroundReach)
                around.remove(_frames[i - backgroundReach - 1][band]);
            const float background = std::max(static_cast<float>(around.quantile(backgroundShare)), lowest);
            const float above = (static_cast<float>(_frames[i][band]) - background) / stepsPerDecibel;
            const float share = (above - leastDecibel) / (mostDecibel - leastDecibel);
            activity.likelihood[i] += std::clamp(share, 0.0F, 1.0F) / bandCount;
        }
    }
    return activity;
}

} // namespace murvo::service
