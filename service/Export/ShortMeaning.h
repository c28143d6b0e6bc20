// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace murvo::service {

struct LookedUp;

/// What a card has room for of a word's meanings: a few translations of the first three senses, else
/// WordNet's first definition; empty when nothing knows the word.
[[nodiscard]] QString shortMeaning(const LookedUp &found);

} // namespace murvo::service
