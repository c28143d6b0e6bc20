// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Dictionary/Entry.h"

namespace murvo::service {

/// Reads an entry as Mueller's English-Russian dictionary lays them out: homonyms "_I", parts of speech "1.",
/// senses "1)", examples among the translations, labels "_разг.". Each part of speech becomes an entry.
///
/// Never fails; what has neither translation nor reference is left out. Labels and remarks stay Russian.
[[nodiscard]] std::vector<Entry> readMuellerEntries(const QString &text);

/// What such entries of a verb have among their examples for a phrase, "give up" under "give"; no senses when
/// there is nothing.
[[nodiscard]] Entry muellerPhrase(const std::vector<Entry> &entries, const QString &phrase);

} // namespace murvo::service
