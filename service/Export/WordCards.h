// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Export/WordCard.h"

#include <QList>

#include <atomic>
#include <functional>

namespace murvo::service {

struct SavedWord;

/// Tells for a dictionary form what a card shows of it; empty when that is not known. They throw when it
/// cannot be told any more, as at the end of the service.
struct WordFacts {
    std::function<QString(const QString &lemma)> meaning; ///< for words without a gloss of the learner's
    std::function<QString(const QString &lemma)> pronunciation; ///< IPA
};

/// The card of each word, in their order. Only those that are being learned are looked up: of known words
/// there may be thousands. Throws what the facts throw; cancelled, it ends early.
[[nodiscard]] QList<WordCard> cardsOf(const QList<SavedWord> &words, const WordFacts &facts,
                                      const std::atomic<bool> &isCancelled);

} // namespace murvo::service
