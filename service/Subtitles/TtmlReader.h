// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Subtitles/CueReader.h"
#include "Subtitles/Cues.h"

#include <QString>

namespace murvo::service {

/// Reads a TTML (DFXP) file as far as it is well formed. filmRate is for times in frames where the file does
/// not say its rate. Takes any text, and refuses to follow entities that a file defines itself; any thread.
[[nodiscard]] QList<Cue> readTtml(const QString &text, FrameRate filmRate);

} // namespace murvo::service
