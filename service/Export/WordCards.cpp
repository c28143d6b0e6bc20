// SPDX-License-Identifier: GPL-3.0-or-later
#include "Export/WordCards.h"

#include "Vocabulary/SavedWord.h"

namespace murvo::service {

QList<WordCard> cardsOf(const QList<SavedWord> &words, const WordFacts &facts,
                        const std::atomic<bool> &isCancelled) {
    QList<WordCard> cards;
    cards.reserve(words.size());
    for (const SavedWord &word : words) {
        if (isCancelled)
            return cards;
        WordCard card;
        card.guid = word.guid;
        card.word = word.lemma;
        card.meaning = word.gloss;
        if (isLearned(word.status)) {
            card.pronunciation = facts.pronunciation(word.lemma);
            if (word.gloss.isEmpty())
                card.meaning = facts.meaning(word.lemma);
        }
        card.line = word.line;
        card.wordInLine = word.form;
        card.translation = word.translation;
        card.filmName = word.filmName;
        card.filmPath = word.filmPath;
        card.filmSizeBytes = word.filmSizeBytes;
        card.startMs = word.startMs;
        card.endMs = word.endMs;
        card.addedAtMs = word.addedAtMs;
        card.status = nameOf(word.status);
        cards.append(card);
    }
    return cards;
}

} // namespace murvo::service
