// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Dictionary/rank/ExampleSentences.h"
#include "Dictionary/rank/SpeechModel.h"
#include "Dictionary/rank/SpellingLists.h"

#include <QByteArray>
#include <QList>
#include <QSet>

#include <map>
#include <memory>
#include <vector>

namespace murvo::service {

class DictdDictionary;
class English;
class WordNet;

/// What the order of words is made of.
struct RankSources {
    const English &english;
    const WordNet &wordNet;
    const SpellingLists &spelling;
    const std::vector<SaidForm> &said;
    const ExampleSentences &examples;
    const std::vector<std::unique_ptr<DictdDictionary>> &smallDictionaries; ///< which have common words only
    const QSet<QByteArray> &notOnlyNames; ///< words that count although the lists have them as names or not
};

/// How common each dictionary form of English is. What is counted of a form goes to its dictionary words, in
/// shares by how often WordNet's makers met each of them.
class WordScores {
  public:
    explicit WordScores(const RankSources &sources);

    /// The dictionary forms, the commonest first; the same for the same sources, always.
    [[nodiscard]] QList<QByteArray> byUse(std::size_t most) const;

  private:
    struct Use {
        double saidPerMillion = 0;
        double inExamplesPerMillion = 0;
    };

    void add(const QByteArray &form, double perMillion, double Use::*where);
    void addToWords(const QString &form, double perMillion, double Use::*where);
    [[nodiscard]] bool counts(const QByteArray &word) const;
    [[nodiscard]] double score(const QByteArray &word, const Use &use) const;

    RankSources _sources;
    std::map<QByteArray, Use> _words; ///< in one order, so that sums are always the same
};

} // namespace murvo::service
