// SPDX-License-Identifier: GPL-3.0-or-later
#include "Vocabulary/FilmWords.h"

#include "Store/SettingsTable.h"
#include "Store/WordTable.h"
#include "Vocabulary/Lexicon.h"
#include "Vocabulary/LineIndex.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace murvo::service {

namespace {

constexpr qsizetype mostToLearnFirst = 30;

// A word is worth more the oftener it is in the film, and the commoner it is in English, where it will be met
// again: half as common counts as much as being in the film 0.7 times as often.
double worth(const FilmWord &word) {
    return (1 + word.count) / std::sqrt(word.rank);
}

QList<FilmWord> worthLearning(const QList<FilmWord> &words) {
    QList<FilmWord> found;
    std::copy_if(words.begin(), words.end(), std::back_inserter(found),
                 [](const FilmWord &word) { return !word.isKnown && !word.isName && word.rank > 0; });
    std::sort(found.begin(), found.end(), [](const FilmWord &a, const FilmWord &b) {
        return std::tuple(-worth(a), a.lemma) < std::tuple(-worth(b), b.lemma);
    });
    return found.mid(0, mostToLearnFirst);
}

} // namespace

Knowledge FilmWords::knowledge() {
    return Knowledge(_parts.settings.all().startLevel, _words.statuses(), _lexicon);
}

FilmWordsAnswer FilmWords::read(qint32 filmId) {
    LineReader reader(_parts);
    const auto english = reader.tracks(filmId).english;
    if (!english)
        return {};
    _index.bringUpToDate(filmId);
    FilmWordsAnswer answer;
    answer.subtitleId = english->id;
    const Knowledge knows = knowledge();
    for (const MetWord &met : _parts.lines.words(english->id)) {
        const qint32 rank = _lexicon.rank(met.lemma);
        const bool isKnown = knows.isKnown(met.lemma, rank, met.isName);
        answer.share.running += met.count;
        answer.share.known += isKnown ? met.count : 0;
        answer.words.append({met.lemma, met.form, met.forms, met.count, rank, met.isName, isKnown,
                             knows.status(met.lemma), met.lineId});
    }
    std::sort(answer.words.begin(), answer.words.end(), [](const FilmWord &a, const FilmWord &b) {
        return std::tuple(-a.count, a.lemma) < std::tuple(-b.count, b.lemma);
    });
    for (const FilmWord &word : worthLearning(answer.words)) {
        if (const auto line = _parts.lines.line(word.lineId))
            answer.first.append({word, reader.shown(*line, filmId)});
    }
    return answer;
}

QList<WordShare> FilmWords::shares(const QList<qint32> &filmIds) {
    LineReader reader(_parts);
    const Knowledge knows = knowledge();
    QList<WordShare> shares;
    for (const qint32 filmId : filmIds) {
        WordShare share;
        const auto english = reader.tracks(filmId).english;
        for (const MetWord &met : english ? _parts.lines.wordCounts(english->id) : QList<MetWord>()) {
            share.running += met.count;
            if (knows.isKnown(met.lemma, _lexicon.rank(met.lemma), met.isName))
                share.known += met.count;
        }
        shares.append(share);
    }
    return shares;
}

} // namespace murvo::service
