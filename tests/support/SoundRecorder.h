// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QProcess>

namespace murvo::test {

/// Records what the desktop's sound server plays, as heard behind its default output.
class SoundRecorder {
  public:
    SoundRecorder();
    ~SoundRecorder();
    SoundRecorder(const SoundRecorder &) = delete;
    SoundRecorder &operator=(const SoundRecorder &) = delete;

    /// Amplitude (0 to 1) of a tone of the frequency in the last half second; 0 before as much has been
    /// recorded.
    [[nodiscard]] double amplitudeOf(double frequencyHz);

  private:
    QProcess _parec;
    QByteArray _samples; // 16 bit, mono, little-endian
};

/// A sound file (WAV) with one tone.
[[nodiscard]] QByteArray toneFile(double frequencyHz, double seconds);

} // namespace murvo::test
