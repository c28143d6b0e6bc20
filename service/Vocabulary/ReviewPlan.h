// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Vocabulary/WordStatus.h"

#include <chrono>
#include <optional>

namespace murvo::service {

/// After how long a word comes up again that has just been given this status; none for one that is known or
/// ignored. Each step asks for a little more than twice the time of the one before.
[[nodiscard]] constexpr std::optional<std::chrono::milliseconds> reviewInterval(WordStatus status) {
    using std::chrono::hours;
    switch (status) {
    case WordStatus::New:
        return hours(0);
    case WordStatus::Learning1:
        return hours(24);
    case WordStatus::Learning2:
        return hours(3 * 24);
    case WordStatus::Learning3:
        return hours(7 * 24);
    case WordStatus::Learning4:
        return hours(16 * 24);
    case WordStatus::Known:
    case WordStatus::Ignored:
        break;
    }
    return std::nullopt;
}

} // namespace murvo::service
