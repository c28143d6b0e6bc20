// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Timing/SpeechActivity.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace murvo::service {

/// Takes the sound of a film piece by piece and keeps how loud each frame is in four bands of the voice; then
/// tells where they rise above what surrounds them together, as a voice does and music and noise rarely do.
/// Lives for one film, on one thread.
class SpeechBands {
  public:
    static constexpr int sampleRate = 8'000;
    static constexpr int frameMs = 10;
    static constexpr std::size_t frameSamples = sampleRate * frameMs / 1'000;
    static constexpr std::size_t bandCount = 4;

    explicit SpeechBands(std::size_t expectedFrames);

    /// One voice, full scale 1.
    void addSamples(const float *samples, std::size_t count);
    void addSilence(std::size_t sampleCount);

    [[nodiscard]] std::size_t sampleCount() const { return _samples; }
    [[nodiscard]] SpeechActivity activity() const;

  private:
    /// Band-pass of second order.
    struct Filter {
        float gain = 0;
        float feedback1 = 0;
        float feedback2 = 0;
        float in1 = 0;
        float in2 = 0;
        float out1 = 0;
        float out2 = 0;

        float pass(float in);
    };
    /// Loudness in half decibels above -127 dB of full scale.
    using Loudness = std::array<std::uint8_t, bandCount>;

    void add(float sample);
    void endFrame();

    std::array<Filter, bandCount> _filters;
    std::array<float, bandCount> _energies{};
    std::vector<Loudness> _frames;
    std::size_t _samples = 0;
};

} // namespace murvo::service
