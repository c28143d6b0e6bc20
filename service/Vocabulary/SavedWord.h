// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Vocabulary/WordStatus.h"

#include <QList>
#include <QString>

namespace murvo::service {

class Database;

/// All that another program needs of a word that the learner has marked: the word, and the line in which it
/// was saved last. A word that was marked without a line, as an imported one, has none: filmId is 0 and what
/// is said of the line is empty.
struct SavedWord {
    QString guid; ///< stays the same as long as the learner does not forget the word
    QString lemma;
    QString form; ///< as the line has it
    WordStatus status = WordStatus::New;
    QString gloss;       ///< the learner's own, empty when there is none
    QString line;        ///< its text lines parted by "\n"
    QString translation; ///< the line shown beneath, empty when there was none
    qint32 filmId = 0;
    QString filmName;
    QString filmPath;   ///< where the film lay last; empty when never told
    qint64 startMs = 0; ///< of the film
    qint64 endMs = 0;
    qint64 addedAtMs = 0;   ///< since 1970, UTC: when the word was marked first
    qint64 changedAtMs = 0; ///< when its status was last changed
    qint64 savedAtMs = 0;   ///< when it was saved with this line
};

/// Every word that the learner has marked, whatever its status, oldest first; the glosses in that language.
/// Any thread; may throw SQLite::Exception.
[[nodiscard]] QList<SavedWord> savedWords(Database &database, const QString &glossLanguage);

} // namespace murvo::service
