// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace murvo::test {

/// Films for the tests, made with ffmpeg on first use and kept in the build folder. Paths are absolute.

/// 20 s, 640x360, 25 frames a second, two audio tracks titled Low (220 Hz) and High (880 Hz).
[[nodiscard]] QString filmWithTwoAudioTracks();
/// 20 s, 640x360 pixels that are twice as wide as high, which the stream alone says; no sound.
[[nodiscard]] QString anamorphicFilm();
/// 4 s, 1600x900, no sound.
[[nodiscard]] QString largeFilm();
/// 4.9 s, 320x240, one audio track.
[[nodiscard]] QString shortFilm();
/// 4 s, 320x240, its index behind everything else.
[[nodiscard]] QString filmWithLateIndex();
/// 4 s, no picture.
[[nodiscard]] QString soundOnly();
/// 4 s, 320x240, no sound.
[[nodiscard]] QString silentFilm();
/// 640x360, 50 frames a second, each with its number in bars as wide as they are many: the first is the
/// highest binary digit, white is 1. With a tone.
[[nodiscard]] QString filmWithFrameNumbers(int seconds);
constexpr int frameBars = 16;
constexpr int frameMs = 20;

} // namespace murvo::test
