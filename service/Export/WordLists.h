// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Export/WordCard.h"

#include <QList>

namespace murvo::service {

// The words as a table with a line of headings: Word, Pronunciation, Meaning, Line, Translation, Film, Time
// in the film, Status. A field that a spreadsheet would take for a formula begins with an apostrophe.

/// Fields parted by commas, quoted, lines ended by CR and LF, with a byte order mark, without which
/// spreadsheets take the letters for others.
[[nodiscard]] QByteArray csvOf(const QList<WordCard> &cards);

/// Fields parted by tabs, a line each, no mark: for programs. What are line breaks and tabs is a blank here.
[[nodiscard]] QByteArray tsvOf(const QList<WordCard> &cards);

} // namespace murvo::service
