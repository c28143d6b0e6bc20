// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Subtitles/Cues.h"

#include <QByteArray>

namespace murvo::service {

/// A whole WebVTT file of these cues. readCues() gives the same cues back when they are as inOrder() leaves
/// them. A pure function, any thread.
[[nodiscard]] QByteArray webVtt(const QList<Cue> &cues);

} // namespace murvo::service
