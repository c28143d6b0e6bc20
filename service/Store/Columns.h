// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <SQLiteCpp/SQLiteCpp.h>

namespace murvo::service {

/// Empty for NULL.
[[nodiscard]] inline QString textOf(const SQLite::Column &column) {
    return QString::fromStdString(column.getString());
}

} // namespace murvo::service
