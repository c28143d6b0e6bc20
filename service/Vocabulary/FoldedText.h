// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace murvo::service {

/// The text as it is compared where neither case nor accents count. Marks that make another letter or sound
/// of theirs, as in Japanese and Hindi, are no accents.
[[nodiscard]] QString foldedText(const QString &text);

} // namespace murvo::service
