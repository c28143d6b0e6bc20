// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

namespace murvo::service {

/// What the name of a subtitle file says about it.
struct SidecarName {
    QString language; ///< ISO 639-2/T, empty when the name tells none
    bool forced = false;
    bool hearingImpaired = false;
};

/// Reads the name of a file that lies beside a film: FILM.EXT or FILM.WORDS.EXT, where EXT is a subtitle
/// extension in any case and each word is a language (en, eng, English, pt-BR) or a remark (forced, sdh).
/// None when the file is not a subtitle file of that film. Both are bare file names.
[[nodiscard]] std::optional<SidecarName> readSidecarName(const QString &filmName, const QString &fileName);

} // namespace murvo::service
