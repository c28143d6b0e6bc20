// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Subtitles/Cues.h"

#include <QString>

namespace murvo::service {

/// Reads a SAMI file. Such a file may hold the lines of several languages, each in a class of its own: the
/// first class that has lines is taken, never two. A line stays until the next one of its class. Takes any
/// text; a pure function, any thread.
[[nodiscard]] QList<Cue> readSami(const QString &text);

} // namespace murvo::service
