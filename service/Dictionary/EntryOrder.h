// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Dictionary/Entry.h"

#include <functional>

namespace murvo::service {

/// How often a word was met as a part of speech, by the names that entries have for it.
using TimesMet = std::function<int(const QString &partOfSpeech)>;

/// Puts the entries of one word in the order in which a learner is likely to need them: the part of speech
/// that the word is met as most often first; then entries with examples, before those of one field
/// ("[naut.]"). What tells no part of speech is taken for the usual one, what is of forms comes last.
void orderEntries(std::vector<Entry> &entries, const TimesMet &timesMet, const QString &language);

/// What is known of a word whose entry mixes parts of speech.
struct SenseOrder {
    QStringList likely;        ///< translations of it, the likeliest first
    bool isMostlyVerb = false; ///< it is met as a verb more often than not
    QString language;          ///< that of the translations
};
/// Puts the senses of such an entry in order: verbs first when the word mostly is one, then by what is
/// likely; the others keep their order behind.
void orderSenses(Entry &entry, const SenseOrder &order);

/// The translations of entries of a reversed dictionary, those as parts of speech that the word hardly ever
/// is behind the others.
[[nodiscard]] QStringList likelyTranslations(const std::vector<Entry> &entries, const TimesMet &timesMet);

[[nodiscard]] QStringList translationsOf(const Entry &entry);
[[nodiscard]] bool tellsParts(const std::vector<Entry> &entries);

} // namespace murvo::service
