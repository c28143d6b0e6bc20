// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/VocabularyParts.h"
#include "Store/WordTable.h"
#include "Vocabulary/LineReader.h"

#include <QJsonObject>

namespace murvo::service {

class Lexicon;
class SoundUrls;

// The forms of words and lines in the service's replies.

/// With the line in which it was saved last.
[[nodiscard]] QJsonObject wordJson(const SavedWord &word, const Lexicon &lexicon, SoundUrls &sounds);

/// Without sightings.
[[nodiscard]] QJsonObject unmarkedWordJson(const QString &lemma, const QString &gloss,
                                           const Lexicon &lexicon);

[[nodiscard]] QJsonObject sightingJson(const Sighting &sighting, SoundUrls &sounds);

[[nodiscard]] QJsonObject lineJson(const ShownLine &line, SoundUrls &sounds);

/// All that is told of a word, marked or not, with every line in which it was saved.
[[nodiscard]] QJsonObject wholeWordJson(const QString &lemma, const VocabularyParts &parts,
                                        SoundUrls &sounds);

/// Null for none.
[[nodiscard]] QJsonValue timeOrNull(std::optional<qint64> timeMs);

/// Its name, or null for none.
[[nodiscard]] QJsonValue statusJson(std::optional<WordStatus> status);

} // namespace murvo::service
