// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Vocabulary/LineReader.h"

#include <QList>

namespace murvo::service {

/// A page of the lines that were found.
struct FoundLines {
    QList<ShownLine> lines;
    qint64 next = 0; ///< what to go on below; 0: that was all
};

/// Finds the lines of all films in which something is said. Of each film one subtitle of each language is
/// searched, as the same line would be found in others again. Any thread; may throw SQLite::Exception.
[[nodiscard]] FoundLines findLines(const LineParts &parts, const LineQuery &sought, qint64 below,
                                   qint32 count);

} // namespace murvo::service
