// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Dictionary/Entry.h"

namespace murvo::service {

/// What language the translations of a dictionary are in: in one into English, what is below them in another
/// language tells what the headword means.
enum class Translations { Foreign, English };

/// Reads an entry as FreeDict's dictionaries lay them out: the headword with its pronunciation and part of
/// speech, then numbered or bare senses, examples in quotation marks, remarks behind words like "Note:".
///
/// Never fails: what cannot be told apart is kept as a translation; an entry without any has no senses.
[[nodiscard]] Entry readFreeDictEntry(const QString &text, Translations translations = Translations::Foreign);

/// Parts a text with sections ("II. <V> 1. ...") into texts of one part of speech each, laid out as others
/// are; compounds and phrases among them get their own headword. Other texts stay whole.
[[nodiscard]] QStringList sectionsOf(const QString &text);

/// Leaves out the entries whose headword was cut short when the dictionary was made ("run" for "run away"):
/// they begin with the pronunciation of another entry and go on, or were cut before they got one, which then
/// is in another notation.
[[nodiscard]] std::vector<Entry> withoutCutHeadwords(std::vector<Entry> entries);

/// Makes those that hold nothing but translations one for each part of speech: some dictionaries have an
/// entry for every translation.
[[nodiscard]] std::vector<Entry> withBareOnesJoined(std::vector<Entry> entries);

} // namespace murvo::service
