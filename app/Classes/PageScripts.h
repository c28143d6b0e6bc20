// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace murvo {

/// The scripts by which the player speaks to a page. All but the two queries trigger an event of the page's
/// window and do nothing in a page without "$".
namespace PageScripts {

[[nodiscard]] QString timeUpdate(qint64 milliseconds);
[[nodiscard]] QString resized();
[[nodiscard]] QString leftFullscreen();
[[nodiscard]] QString enteredFullscreen();
[[nodiscard]] QString refreshLevel();

/// A script text literal in single quotes that stands for text, whatever is in it.
[[nodiscard]] QString quoted(const QString &text);

/// value is script source, not text: a text carries its own quotes. A null guid reads "(null)".
[[nodiscard]] QString response(const QString &guid, const QString &value);

/// Query to the home page: the code of the language whose flag is selected.
[[nodiscard]] QString selectedLanguage();

/// Query to the player page: distance in CSS pixels from its top to the element that parts the picture,
/// above, from the page's own area, below.
[[nodiscard]] QString nextSubtitleTop();

} // namespace PageScripts

} // namespace murvo
