// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <atomic>
#include <functional>
#include <optional>
#include <vector>

namespace murvo::service {

/// Where somebody speaks in a film: for each frame of frameMs from the film's start how much the sound is
/// like speech above its background, 0 to 1. Not a probability; made to be compared with itself.
struct SpeechActivity {
    int frameMs = 10;
    std::vector<float> likelihood;
};

/// Listens to one sound track of a film; streamIndex is its place among all streams of the file, -1 the
/// default or first sound. Local regular files only, whatever the film refers to. Takes the time of decoding
/// the sound (minutes of film a second) and keeps 8 bytes a frame, never the sound. progress gets the share
/// done, 0 to 1, on the calling thread, and must not throw. None when there is no such sound, none that can
/// be decoded, or when cancelled. Any thread.
[[nodiscard]] std::optional<SpeechActivity> findSpeech(const QString &filmPath, int streamIndex,
                                                       const std::function<void(double share)> &progress,
                                                       const std::atomic<bool> &isCancelled);

} // namespace murvo::service
