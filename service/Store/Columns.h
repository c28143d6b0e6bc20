// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <SQLiteCpp/SQLiteCpp.h>

namespace murvo::service {

/// Empty for NULL.
[[nodiscard]] inline QString textOf(const SQLite::Column &column) {
    return QString::fromStdString(column.getString());
}

[[nodiscard]] inline QByteArray blobOf(const SQLite::Column &column) {
    return {static_cast<const char *>(column.getBlob()), column.getBytes()};
}

} // namespace murvo::service
