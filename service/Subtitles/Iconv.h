// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QByteArrayView>

namespace murvo::service {

struct Converted {
    QByteArray utf8;
    qsizetype errors = 0; ///< places that had no meaning and became U+FFFD
};

/// True for names that iconv can read from.
[[nodiscard]] bool isEncoding(const QByteArray &encoding);

/// bytes as UTF-8. The encoding must be one for which isEncoding() is true. Any thread.
[[nodiscard]] Converted convertToUtf8(QByteArrayView bytes, const QByteArray &encoding);

} // namespace murvo::service
