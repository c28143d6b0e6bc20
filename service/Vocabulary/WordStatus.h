// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLatin1String>
#include <QStringView>

#include <array>
#include <optional>

namespace murvo::service {

/// How well the learner knows a word that has been marked.
enum class WordStatus {
    New, ///< to be learned
    Learning1,
    Learning2,
    Learning3,
    Learning4, ///< almost known
    Known,
    Ignored ///< not to be learned: a name, a sound
};

/// Their names in the store and in the service's replies, in the order of the enumeration.
inline constexpr std::array wordStatusNames{QLatin1String("new"),       QLatin1String("learning1"),
                                            QLatin1String("learning2"), QLatin1String("learning3"),
                                            QLatin1String("learning4"), QLatin1String("known"),
                                            QLatin1String("ignored")};

[[nodiscard]] inline QLatin1String nameOf(WordStatus status) {
    return wordStatusNames[static_cast<size_t>(status)];
}

/// None for a name that is not one of them.
[[nodiscard]] inline std::optional<WordStatus> wordStatusNamed(QStringView name) {
    for (size_t i = 0; i < wordStatusNames.size(); ++i) {
        if (name == wordStatusNames[i])
            return static_cast<WordStatus>(i);
    }
    return std::nullopt;
}

} // namespace murvo::service
