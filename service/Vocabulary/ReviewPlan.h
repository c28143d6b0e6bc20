// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Vocabulary/WordStatus.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>

namespace murvo::service {

// When words come up for review, and what a grade does to them. No clock and no store.

/// How well the learner knew a word when it came up.
enum class ReviewGrade {
    Again, ///< not at all
    Hard,
    Good,
    Easy
};

/// Their names in requests, in the order of the enumeration.
inline constexpr std::array reviewGradeNames{QLatin1String("again"), QLatin1String("hard"),
                                             QLatin1String("good"), QLatin1String("easy")};

/// None for a name that is not one of them.
[[nodiscard]] inline std::optional<ReviewGrade> reviewGradeNamed(QStringView name) {
    for (size_t i = 0; i < reviewGradeNames.size(); ++i) {
        if (name == reviewGradeNames[i])
            return static_cast<ReviewGrade>(i);
    }
    return std::nullopt;
}

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

inline constexpr std::chrono::milliseconds longestReviewInterval = *reviewInterval(WordStatus::Learning4);

/// What has become of a word by a grade.
struct GradedWord {
    WordStatus status;
    std::optional<std::chrono::milliseconds> interval; ///< until it comes up again; none: never
};

/// A word that was not known begins anew, and comes up again while it is still in the ear. One that is known
/// or ignored stays so, but for that.
[[nodiscard]] constexpr GradedWord graded(WordStatus status, ReviewGrade grade) {
    constexpr std::chrono::milliseconds soon = std::chrono::minutes(10);
    if (grade == ReviewGrade::Again)
        return {WordStatus::Learning1, soon};
    const auto interval = reviewInterval(status);
    if (!interval)
        return {status, std::nullopt};
    if (grade == ReviewGrade::Hard)
        return {status, std::max(*interval / 2, soon)};
    const int steps = grade == ReviewGrade::Good ? 1 : 2;
    const auto next = static_cast<WordStatus>(
        std::min(static_cast<int>(status) + steps, static_cast<int>(WordStatus::Known)));
    return {next, reviewInterval(next)};
}

} // namespace murvo::service
