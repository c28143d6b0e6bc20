// SPDX-License-Identifier: GPL-3.0-or-later
#include "Export/WordCards.h"

#include "Vocabulary/SavedWord.h"

#include <algorithm>
#include <iterator>

namespace murvo::service {

namespace {

bool isLearned(const SavedWord &word) {
    return word.status != WordStatus::Known && word.status != WordStatus::Ignored;
}

} // namespace

QList<WordCard> cardsOf(const QList<SavedWord> &words, const WordFacts &facts) {
    QList<WordCard> cards;
    cards.reserve(words.size());
    for (const SavedWord &word : words) {
        WordCard card;
        card.guid = word.guid;
        card.word = word.lemma;
        card.meaning = word.gloss;
        if (isLearned(word)) {
            card.pronunciation = facts.pronunciation(word.lemma);
            if (word.gloss.isEmpty())
                card.meaning = facts.meaning(word.lemma);
        }
        card.line = word.line;
        card.wordInLine = word.form;
        card.translation = word.translation;
        card.filmName = word.filmName;
        card.filmPath = word.filmPath;
        card.startMs = word.startMs;
        card.endMs = word.endMs;
        card.savedAtMs = word.addedAtMs;
        card.status = nameOf(word.status);
        cards.append(card);
    }
    return cards;
}

QList<SavedWord> learnedWords(const QList<SavedWord> &words) {
    QList<SavedWord> learned;
    std::copy_if(words.begin(), words.end(), std::back_inserter(learned), isLearned);
    return learned;
}

} // namespace murvo::service
