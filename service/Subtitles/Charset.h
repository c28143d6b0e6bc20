// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

namespace murvo::service {

/// The text of a file in whatever encoding it has, as valid UTF-8 without a byte order mark and without NULs.
///
/// The encoding is told by the byte order mark, by the share of NUL bytes, by being good UTF-8, and else
/// guessed from the text. What cannot be read becomes U+FFFD; it never fails. A pure function, any thread.
[[nodiscard]] QByteArray toUtf8(const QByteArray &fileBytes);

} // namespace murvo::service
