// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Vocabulary/WordStatus.h"

#include <QString>

#include <optional>

namespace murvo::service {

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
    QString filmPath;         ///< where the film lay last; empty when never told
    qint64 filmSizeBytes = 0; ///< 0: not known
    qint64 startMs = 0;       ///< of the film
    qint64 endMs = 0;
    qint64 addedAtMs = 0;          ///< since 1970, UTC: when the word was marked first
    qint64 changedAtMs = 0;        ///< when its status was last changed
    qint64 savedAtMs = 0;          ///< when it was saved with this line
    std::optional<qint64> dueAtMs; ///< when it comes up for review; none for what is not being learned
};

} // namespace murvo::service
