// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace murvo::service {

// The note type and the deck of the words. Their numbers and names never change: by them Anki knows them
// again and brings what it has up to date.
constexpr qint64 ankiNoteTypeId = 1'763'900'000'001;
constexpr qint64 ankiDeckId = 1'763'900'000'002;
inline constexpr QLatin1String ankiNoteTypeName("Murvo word");
inline constexpr QLatin1String ankiDeckName("Murvo");
inline constexpr QLatin1String ankiTag("murvo");

[[nodiscard]] QString ankiFront();
[[nodiscard]] QString ankiBack();
[[nodiscard]] QString ankiStyle();

} // namespace murvo::service
