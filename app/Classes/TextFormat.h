// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace murvo {

/// A missing text is written out as "(null)", in requests and in replies alike.
[[nodiscard]] inline QString orNullText(const QString &text) {
    return text.isNull() ? QStringLiteral("(null)") : text;
}

} // namespace murvo
