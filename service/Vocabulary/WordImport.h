// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Vocabulary/WordStatus.h"

#include <QByteArray>
#include <QtGlobal>

namespace murvo::service {

class Lexicon;
class WordTable;

struct WordImportResult {
    qint32 added = 0;      ///< words that were not known before
    qint32 known = 0;      ///< words that were known or ignored already
    qint32 unreadable = 0; ///< lines without a word
};

/// Marks all words of a list as known: a text in any encoding, one word a line, or the first column of CSV or
/// TSV. Each form is taken as its dictionary form. All or none. May throw SQLite::Exception.
[[nodiscard]] WordImportResult importKnownWords(const QByteArray &list, WordTable &words,
                                                const Lexicon &lexicon);

} // namespace murvo::service
