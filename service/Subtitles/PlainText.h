// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QStringList>

namespace murvo::service {

/// How a subtitle format marks up its text.
enum class Markup {
    SubRip,   ///< tags in <>, position marks in {\}, entities
    WebVtt,   ///< tags and times in <>, entities
    MicroDvd, ///< marks in {y:}, "|" breaks a line
    Ass,      ///< the event's fields, overrides in {}, \N breaks a line
    MovText   ///< a length in two bytes, the text, then style boxes
};

/// The plain text of one cue, a line an entry, without markup, blank lines or control characters.
/// packet is the cue as the file has it, in UTF-8. assTextField is the number of commas before an ASS event's
/// text. Pure functions, any thread; they take any bytes.
[[nodiscard]] QStringList plainLines(QByteArrayView packet, Markup markup, int assTextField = 8);

} // namespace murvo::service
