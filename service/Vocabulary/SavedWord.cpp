// SPDX-License-Identifier: GPL-3.0-or-later
#include "Vocabulary/SavedWord.h"

#include "Store/WordTable.h"

#include <algorithm>
#include <limits>

namespace murvo::service {

QList<SavedWord> savedWords(Database &database, const QString &glossLanguage) {
    WordQuery all;
    all.count = std::numeric_limits<qint32>::max();
    QList<SavedWord> words = WordTable(database).list(all, glossLanguage).words;
    std::reverse(words.begin(), words.end());
    return words;
}

} // namespace murvo::service
