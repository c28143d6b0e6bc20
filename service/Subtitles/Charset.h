// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QByteArrayList>

namespace murvo::service {

// Pure functions, any thread; they take any bytes and never fail. Encodings are iconv's names in upper case.

/// The text of a file as valid UTF-8 without a byte order mark and without NULs. With no encoding, or one
/// that iconv does not know, it is found. What cannot be read becomes U+FFFD.
[[nodiscard]] QByteArray toUtf8(const QByteArray &bytes, const QByteArray &encoding = {});

/// The encoding that the file most likely has: told by its byte order mark, by the share of NUL bytes, by
/// being good UTF-8, by its own XML declaration, and else guessed from the text.
[[nodiscard]] QByteArray encodingOf(const QByteArray &bytes);

/// Encodings that the file may have, best first: the found one, then at most seven that read it without
/// errors, each with another text. For a person who sees wrong letters.
[[nodiscard]] QByteArrayList encodingGuesses(const QByteArray &bytes);

} // namespace murvo::service
