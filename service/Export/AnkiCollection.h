// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Export/AnkiNote.h"

namespace murvo::service {

/// The database inside a package ("collection.anki2", version 11), made in memory: our deck and note type,
/// and a new card for each note, in their order. Notes count as changed at the time given (ms since 1970,
/// UTC); of notes that it has, Anki takes the newer. Throws std::exception when there is no memory.
[[nodiscard]] QByteArray ankiCollection(const QList<AnkiNote> &notes, qint64 nowMs);

} // namespace murvo::service
