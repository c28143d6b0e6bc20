// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Dictionary/Dictionaries.h"
#include "Dictionary/English.h"
#include "Dictionary/EntryOrder.h"
#include "Dictionary/FunctionWords.h"
#include "Dictionary/Phrases.h"
#include "Dictionary/WordNet.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <vector>

namespace murvo::service {

/// An entry and where it comes from.
struct SourcedEntry {
    Entry entry;
    const DictionarySource *source = nullptr; ///< lives as long as the service
};

/// A word or phrase of the dictionaries that fits what was clicked.
struct Headword {
    QString word;
    int start = 0; ///< what it covers of the text, in UTF-16 units, as length
    int length = 0;
    bool isPhrase = false;
    int rank = 0;                      ///< by use, as English tells it
    QString gloss;                     ///< the learner's own, empty when there is none
    std::vector<SourcedEntry> entries; ///< into the learner's language
    std::vector<EnglishSense> english;
};

/// The answer to a click on a word.
struct LookedUp {
    QString form;                    ///< the word clicked, as written
    QString whole;                   ///< what a contraction stands for, else empty
    QStringList lemmas;              ///< its dictionary words, likeliest first
    bool hasDictionary = false;      ///< whether there is one into the learner's language
    std::vector<Headword> headwords; ///< a phrase first, then those with a gloss, the form itself, its words
    QStringList near;                ///< words spelled nearly so, when there is no headword
};

/// Finds out what a word of a line means, from all dictionaries.
///
/// Any thread; borrows everything.
class WordLookup {
  public:
    WordLookup(const English &english, const WordNet &wordNet, Dictionaries &dictionaries)
        : _english(english)
        , _wordNet(wordNet)
        , _dictionaries(dictionaries) {}

    /// What the learner says that words and phrases mean, by their dictionary forms in lower case.
    using Glosses = QHash<QString, QString>;

    /// The word at that place of a text (UTF-16 units), or the next one; no form when there is none.
    [[nodiscard]] LookedUp lookUp(const QString &text, int at, const QString &language,
                                  const Glosses &glosses = {});

  private:
    [[nodiscard]] bool isKnown(const QString &word, const QString &language);
    /// How often the word was met, by the names that entries have for parts of speech.
    [[nodiscard]] QHash<QString, int> timesMet(const QString &word) const;
    [[nodiscard]] std::vector<SourcedEntry> entries(const QString &word, const QString &language,
                                                    const TimesMet &times);
    [[nodiscard]] std::vector<EnglishSense> senses(const QString &word, const TimesMet &times) const;
    [[nodiscard]] Headword headword(const QString &word, const QString &language, const Glosses &glosses);
    void addWord(LookedUp &found, const EnglishWord &word, const QString &language, const Glosses &glosses);
    [[nodiscard]] QStringList near(const QString &form) const;

    const English &_english;
    const WordNet &_wordNet;
    Dictionaries &_dictionaries;
    const FunctionWords _functionWords = FunctionWords::ofProgram();
};

} // namespace murvo::service
