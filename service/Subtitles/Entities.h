// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringView>

namespace murvo::service {

/// The text that an entity of HTML stands for; name is what is between "&" and ";": "eacute", "#233",
/// "#xE9". Empty when there is no such entity. A pure function, any thread.
[[nodiscard]] QString entityText(QStringView name);

/// What a character of the range U+0080 to U+009F was meant as. Files that were turned into Unicode
/// carelessly have Windows-1252's quotes and dashes there; the range itself holds no text. U+0020 when
/// nothing was meant.
[[nodiscard]] char16_t meantByControl(char16_t control);

} // namespace murvo::service
