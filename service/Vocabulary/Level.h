// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Vocabulary/WordStatus.h"

#include <QHash>
#include <QString>

#include <array>
#include <optional>

namespace murvo::service {

class Lexicon;

/// A level of English, and how many of the commonest words belong to it and to those below.
struct Level {
    QLatin1String name;
    qint32 words;
};

/// The last one has no end: its number is what a well-read native speaker's would be.
inline constexpr std::array levels{Level{QLatin1String("A1"), 500},    Level{QLatin1String("A2"), 1500},
                                   Level{QLatin1String("B1"), 3000},   Level{QLatin1String("B2"), 6000},
                                   Level{QLatin1String("C1"), 12'000}, Level{QLatin1String("C2"), 24'000}};

[[nodiscard]] bool isLevel(const QString &name);

/// Which words the learner knows: those marked so, and of the others the commonest ones, as many as the
/// learner's vocabulary is large.
///
/// The vocabulary is the number of words up to the middle of the level at which the learner began, with each
/// rarer word that is marked as known, and without each of them that is still to be learned. A value; any
/// thread.
class Knowledge {
  public:
    Knowledge(const QString &startLevel, QHash<QString, WordStatus> marked, const Lexicon &lexicon);

    [[nodiscard]] qint32 vocabulary() const { return _vocabulary; }
    [[nodiscard]] const Level &level() const;
    /// None above the last one.
    [[nodiscard]] std::optional<Level> nextLevel() const;
    /// How far from the beginning of the level to that of the next one, 0 to 99; 100 where there is none.
    [[nodiscard]] qint32 percentToNext() const;

    [[nodiscard]] std::optional<WordStatus> status(const QString &lemma) const;
    /// Names are known to everybody; rank as English tells it.
    [[nodiscard]] bool isKnown(const QString &lemma, qint32 rank, bool isName) const;
    [[nodiscard]] qint32 countOf(WordStatus status) const;

  private:
    [[nodiscard]] size_t levelIndex() const;

    QHash<QString, WordStatus> _marked;
    qint32 _vocabulary = 0;
};

} // namespace murvo::service
