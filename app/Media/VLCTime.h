// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <optional>

namespace murvo {

/// A position or a length in milliseconds; absent while it is unknown.
class VLCTime {
  public:
    VLCTime() = default;

    [[nodiscard]] static VLCTime timeWithInt(qint64 milliseconds) { return VLCTime(milliseconds); }

    [[nodiscard]] std::optional<qint64> numberValue() const { return _milliseconds; }
    /// 0 while unknown.
    [[nodiscard]] qint64 intValue() const { return _milliseconds.value_or(0); }

  private:
    explicit VLCTime(qint64 milliseconds)
        : _milliseconds(milliseconds) {}

    std::optional<qint64> _milliseconds;
};

} // namespace murvo
