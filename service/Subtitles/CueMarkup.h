// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Subtitles/MarkedText.h"

#include <QStringView>

namespace murvo::service {

/// How a subtitle format other than ASS marks up its text.
enum class Markup {
    SubRip,    ///< HTML's tags for letters, position marks in {\}, entities; other <words> are text
    WebVtt,    ///< tags and times in <>, entities
    MicroDvd,  ///< marks in {y:}, "/" before an italic line, "|" breaks a line
    SubViewer, ///< as SubRip, and "|" or "[br]" breaks a line
    Sami       ///< HTML: all tags, <br> breaks a line, a line end is a space
};

/// Reads the text of one cue, as the file has it. Pure functions, any thread; they take any text and need
/// time in proportion to its length.
[[nodiscard]] MarkedText readMarkup(QStringView text, Markup markup);

} // namespace murvo::service
