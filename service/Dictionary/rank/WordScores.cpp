// SPDX-License-Identifier: GPL-3.0-or-later
#include "Dictionary/rank/WordScores.h"

#include "Dictionary/DictdDictionary.h"
#include "Dictionary/English.h"
#include "Dictionary/WordNet.h"

#include <algorithm>
#include <cmath>

namespace murvo::service {

namespace {

// Found by comparing lists with how often words are heard in films: docs/architecture.md tells of it.
constexpr double weightOfSpeech = 0.7;
constexpr double weightOfExamples = 0.3;
constexpr double weightOfDictionaries = 0.4;
// What a word may have been met beside, so that none is told by chance alone.
constexpr double unheardPerMillion = 1;
constexpr double unreadPerMillion = 10;

bool isLetterOnly(const QByteArray &word) {
    return word.size() == 1 && word != "a" && word != "i";
}

} // namespace

WordScores::WordScores(const RankSources &sources)
    : _sources(sources) {
    for (const SaidForm &each : _sources.said)
        add(each.form, each.perMillion, &Use::saidPerMillion);
    const double perMillion = 1'000'000.0 / std::max(1, _sources.examples.wordCount());
    for (const auto &[form, times] : _sources.examples.forms())
        add(form, times.all * perMillion, &Use::inExamplesPerMillion);
}

void WordScores::add(const QByteArray &form, double perMillion, double Use::*where) {
    const bool isName = _sources.spelling.hasName(form) && !_sources.notOnlyNames.contains(form);
    const double share = isName ? _sources.examples.shareOfWord(form) : 1;
    const QString whole = uncontracted(QString::fromUtf8(form)).section(QStringLiteral(" / "), 0, 0);
    if (whole.isEmpty())
        return addToWords(QString::fromUtf8(form), perMillion * share, where);
    for (const QString &word : whole.split(u' '))
        addToWords(word, perMillion, where);
}

void WordScores::addToWords(const QString &form, double perMillion, double Use::*where) {
    std::vector<std::pair<QByteArray, double>> words;
    double sum = 0;
    for (const QString &lemma : _sources.english.lemmas(form)) {
        const QByteArray word = lemma.toUtf8();
        if (!counts(word))
            continue;
        double timesMet = 1;
        for (const PartOfSpeech part : partsOfSpeech)
            timesMet += _sources.wordNet.timesMet(word, part);
        words.emplace_back(word, timesMet);
        sum += timesMet;
    }
    for (const auto &[word, timesMet] : words)
        _words[word].*where += perMillion * timesMet / sum;
}

bool WordScores::counts(const QByteArray &word) const {
    return _sources.notOnlyNames.contains(word) || (_sources.spelling.hasWord(word) && !isLetterOnly(word));
}

double WordScores::score(const QByteArray &word, const Use &use) const {
    const QString text = QString::fromUtf8(word);
    const auto having = std::count_if(_sources.smallDictionaries.begin(), _sources.smallDictionaries.end(),
                                      [&text](const auto &dictionary) { return dictionary->has(text); });
    return std::pow(use.saidPerMillion + unheardPerMillion, weightOfSpeech) *
           std::pow(use.inExamplesPerMillion + unreadPerMillion, weightOfExamples) *
           std::pow(1 + static_cast<double>(having), weightOfDictionaries);
}

QList<QByteArray> WordScores::byUse(std::size_t most) const {
    std::vector<std::pair<double, QByteArray>> scores;
    for (const auto &[word, use] : _words)
        scores.emplace_back(-score(word, use), word);
    std::sort(scores.begin(), scores.end());
    scores.resize(std::min(most, scores.size()));
    QList<QByteArray> words;
    for (const auto &[negative, word] : scores)
        words.append(word);
    return words;
}

} // namespace murvo::service
