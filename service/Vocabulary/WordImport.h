// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Vocabulary/WordStatus.h"

#include <QByteArray>
#include <QtGlobal>

#include <optional>

namespace murvo::service {

class Lexicon;
class WordTable;

struct WordImportResult {
    qint32 added = 0;      ///< words that were not marked before
    qint32 known = 0;      ///< words that were known or ignored already
    qint32 kept = 0;       ///< words that are being learned, and stay so
    qint32 unreadable = 0; ///< rows without a word
};

/// Marks the words of a list as known: a text in any encoding, one word a line, or the first column of CSV or
/// TSV; in a list of this program's own with the status that it tells. Each form is taken as its dictionary
/// form. What the learner has marked stays as it is. All or none; none for more than 50,000 rows, and no
/// result then. May throw SQLite::Exception.
[[nodiscard]] std::optional<WordImportResult> importWords(const QByteArray &list, WordTable &words,
                                                          const Lexicon &lexicon);

} // namespace murvo::service
