// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

#include <vector>

struct AVFrame;

namespace murvo::service {

// What was decoded of a film, as files that every flashcard program shows and plays. Any thread; empty when
// it could not be made.

/// A JPEG file in the shape in which the player shows the frame, at most mostWidth wide. The frame's sample
/// aspect ratio counts.
[[nodiscard]] QByteArray jpegOf(const AVFrame &frame, int mostWidth);

/// How light the frame is on the whole: 0 black, 100 white; 0 when it cannot be looked at.
[[nodiscard]] int lightPercentOf(const AVFrame &frame);

/// Samples a second that mp3Of() takes.
constexpr int mp3SampleRate = 44'100;

/// An MP3 file of one channel.
[[nodiscard]] QByteArray mp3Of(const std::vector<float> &samples);

} // namespace murvo::service
