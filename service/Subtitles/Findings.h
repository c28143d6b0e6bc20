// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Sources/SidecarName.h"
#include "Store/SubtitleTable.h"
#include "Subtitles/CueReader.h"

#include <QString>

namespace murvo::service {

/// The word by which programs know the problem; empty for none. The store and the service's replies use it.
[[nodiscard]] QString codeOf(CueProblem problem);

/// Takes from a file's name what it tells of the subtitle.
void takeName(const SidecarName &name, Subtitle &subtitle);

/// What to keep of a subtitle that has been read.
[[nodiscard]] SubtitleFindings findingsOf(const CueReading &reading);

} // namespace murvo::service
