// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Subtitles/Cues.h"

#include <QString>

namespace murvo::service {

/// The language that the lines are written in, as its code in Languages.h; empty when the text does not tell
/// it surely, as too short a one or one in two languages does not. Any thread; some milliseconds.
[[nodiscard]] QString languageOfText(const QList<Cue> &cues);

} // namespace murvo::service
