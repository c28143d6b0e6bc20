// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace murvo::service {

class Router;
class WordLookup;
struct VocabularyParts;

/// What a word of a line means. Borrows everything, for as long as the router answers.
void addDictionaryRoutes(Router &router, WordLookup &lookup, const VocabularyParts &parts);

} // namespace murvo::service
