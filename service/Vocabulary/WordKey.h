// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

namespace murvo::service {

/// The form in which a word or a phrase is kept and compared: composed, lower case, plain apostrophes, single
/// spaces. None for what is no word: without a letter, with control characters, or longer than a hundred.
[[nodiscard]] std::optional<QString> wordKey(const QString &text);

} // namespace murvo::service
