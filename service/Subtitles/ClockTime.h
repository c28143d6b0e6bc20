// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringView>

#include <optional>

namespace murvo::service {

/// Later times, of either sign, are damage; sums of a few of them do not overflow.
constexpr qint64 latestMs = qint64{10'000} * 3600 * 1000;

/// A pattern that finds a time of hours (may be missing), minutes, seconds and a fraction (may be missing);
/// it captures nothing.
[[nodiscard]] QString clockTimePattern();

/// The ms of a time that the pattern found. The fraction is one of a second, however many figures it has:
/// "1:07.5" is 67,500 ms. Nothing when it is no such time, or a later one than latestMs.
[[nodiscard]] std::optional<qint64> clockTimeMs(QStringView text);

/// A decimal fraction's figures in thousandths: "5" is 500, "0049" is 4.
[[nodiscard]] int thousandths(QStringView figures);

} // namespace murvo::service
