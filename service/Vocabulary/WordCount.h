// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Store/LineTable.h"
#include "Subtitles/Cues.h"

#include <QList>

namespace murvo::service {

class Lexicon;

/// The dictionary forms of English lines with their counts, each form once, by its likeliest lemma.
///
/// A name is what never stands in small letters and either has a capital within a sentence or is no word of
/// the language's list. A word is shown by the first line that is neither very short nor very long. Any
/// thread; some milliseconds for a film.
[[nodiscard]] QList<MetWord> countWords(const QList<Cue> &cues, const Lexicon &lexicon);

} // namespace murvo::service
