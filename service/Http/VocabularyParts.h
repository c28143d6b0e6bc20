// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Vocabulary/LineReader.h"

namespace murvo::service {

class Lexicon;
class FilmWords;
class GlossTable;
class WordTable;

/// What the routes about words and lines work with. All borrowed, all outlive the router.
struct VocabularyParts {
    LineParts lines;
    WordTable &words;
    GlossTable &glosses;
    FilmWords &filmWords;
    const Lexicon &lexicon;
};

} // namespace murvo::service
