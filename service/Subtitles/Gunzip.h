// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

#include <optional>

namespace murvo::service {

/// The longest films' subtitles are below 1 MB.
constexpr qsizetype largestSubtitleBytes = 8LL * 1024 * 1024;

[[nodiscard]] bool isGzip(const QByteArray &bytes);

/// The unpacked bytes; none when they are damaged, cut short, or would exceed mostBytes. A pure function.
[[nodiscard]] std::optional<QByteArray> gunzip(const QByteArray &bytes, qsizetype mostBytes);

} // namespace murvo::service
