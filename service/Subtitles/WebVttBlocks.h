// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

namespace murvo::service {

/// A WebVTT file reduced to its header and its cues: style, region and note blocks and cues without a good
/// timing line are left out, a comma before the milliseconds becomes a full stop. The demuxer ends silently
/// at the first of those, and would lose the rest of the file. UTF-8 in and out; a pure function.
[[nodiscard]] QByteArray cueBlocksOnly(const QByteArray &webVtt);

} // namespace murvo::service
