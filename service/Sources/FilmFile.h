// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace murvo::service {

/// Whether a film's file lies at its path, as far as the size (bytes; 0: not known) tells it from another
/// that has taken its name. False for a film whose path was never told.
[[nodiscard]] bool liesThere(const QString &path, qint64 sizeBytes);

} // namespace murvo::service
