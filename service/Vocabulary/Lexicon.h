// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Dictionary/English.h"

#include <QString>
#include <QStringView>

#include <functional>
#include <optional>
#include <utility>

namespace murvo::service {

/// What the learner's words are brought to and graded by: dictionary forms, and how common each is. The one
/// place at which the vocabulary asks the dictionaries. Any thread.
class Lexicon {
  public:
    /// The place of a dictionary form by use, 1 the commonest; 0 when it is in no list.
    using RankOf = std::function<int(const QString &lemma)>;

    Lexicon(const English &english, RankOf rankOf)
        : _english(english)
        , _rankOf(std::move(rankOf)) {}

    /// The likeliest dictionary form in the form of wordKey(); a phrase stays one. None for what is no word.
    [[nodiscard]] std::optional<QString> lemma(const QString &form) const;

    [[nodiscard]] int rank(const QString &lemma) const { return _rankOf(lemma); }

  private:
    const English &_english;
    RankOf _rankOf;
};

} // namespace murvo::service
