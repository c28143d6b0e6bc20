// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Export/AnkiNote.h"

namespace murvo::service {

/// Writes an .apkg file for Anki's import. A second import of the same words brings the first up to date: it
/// takes the notes that were exported later. Any thread; throws std::exception when there is no room.
void writeAnkiPackage(const QString &path, const QList<AnkiNote> &notes, qint64 nowMs);

} // namespace murvo::service
