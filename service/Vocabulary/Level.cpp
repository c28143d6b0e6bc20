// SPDX-License-Identifier: GPL-3.0-or-later
#include "Vocabulary/Level.h"

#include "Vocabulary/Lexicon.h"

#include <algorithm>
#include <utility>

namespace murvo::service {

namespace {

qint32 wordsBelow(size_t index) {
    return index == 0 ? 0 : levels.at(index - 1).words;
}

qint32 wordsAtStart(const QString &startLevel) {
    for (size_t i = 0; i < levels.size(); ++i) {
        if (startLevel == levels.at(i).name)
            return (wordsBelow(i) + levels.at(i).words) / 2;
    }
    return 0;
}

} // namespace

bool isLevel(const QString &name) {
    return std::any_of(levels.begin(), levels.end(),
                       [&name](const Level &level) { return name == level.name; });
}

Knowledge::Knowledge(const QString &startLevel, QHash<QString, WordStatus> marked, const Lexicon &lexicon)
    : _marked(std::move(marked)) {
    const qint32 atStart = wordsAtStart(startLevel);
    _vocabulary = atStart;
    for (auto each = _marked.begin(); each != _marked.end(); ++each) {
        const int rank = lexicon.rank(each.key());
        if (rank == 0 || *each == WordStatus::Ignored)
            continue;
        if (*each == WordStatus::Known && rank > atStart)
            ++_vocabulary;
        else if (*each != WordStatus::Known && rank <= atStart)
            --_vocabulary;
    }
}

size_t Knowledge::levelIndex() const {
    size_t index = 0;
    while (index + 1 < levels.size() && _vocabulary >= levels.at(index).words)
        ++index;
    return index;
}

const Level &Knowledge::level() const {
    return levels.at(levelIndex());
}

std::optional<Level> Knowledge::nextLevel() const {
    const size_t next = levelIndex() + 1;
    return next < levels.size() ? std::optional(levels.at(next)) : std::nullopt;
}

qint32 Knowledge::percentToNext() const {
    const size_t index = levelIndex();
    const qint32 below = wordsBelow(index);
    return nextLevel() ? 100 * (_vocabulary - below) / (levels.at(index).words - below) : 100;
}

std::optional<WordStatus> Knowledge::status(const QString &lemma) const {
    const auto found = _marked.constFind(lemma);
    return found == _marked.constEnd() ? std::nullopt : std::optional(*found);
}

bool Knowledge::isKnown(const QString &lemma, qint32 rank, bool isName) const {
    if (const auto marked = status(lemma))
        return marked == WordStatus::Known || marked == WordStatus::Ignored;
    return isName || (rank > 0 && rank <= _vocabulary);
}

qint32 Knowledge::countOf(WordStatus status) const {
    return static_cast<qint32>(std::count(_marked.begin(), _marked.end(), status));
}

} // namespace murvo::service
