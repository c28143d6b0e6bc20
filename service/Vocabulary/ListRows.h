// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace murvo::service {

/// The rows of a list that people and spreadsheets make: lines of text, or CSV or TSV with quoted cells,
/// whose columns are parted by tabs, semicolons or commas: by the one that the first row has, else by any.
/// Empty rows are left out. A quote that is never closed is a letter like any other. The first
/// rows only, so many at most. Any thread.
[[nodiscard]] QList<QStringList> listRows(const QString &text, qsizetype mostRows);

} // namespace murvo::service
