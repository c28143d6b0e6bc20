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
    bool isAfterFilm = false; ///< the name begins with the film's, so that its end can mean nothing else
    bool isWordsOnly = false; ///< nothing but words of these kinds, and numbers: "2_English"
};

// All are pure functions; file names are bare ones.

[[nodiscard]] bool isSubtitleName(const QString &fileName);
/// Not of samples and trailers, which have no subtitles of their own.
[[nodiscard]] bool isFilmName(const QString &fileName);

/// Without its extension, in the form in which names are compared: systems differ in case and in how they
/// write accents.
[[nodiscard]] QString comparableBase(const QString &fileName);

/// Reads the end of a subtitle's name: a language (en, eng, English, pt-BR) and remarks (forced, sdh), as far
/// back as there is nothing else.
[[nodiscard]] SidecarName readSubtitleWords(const QString &text);
/// The same of a file's name, without its extension.
[[nodiscard]] SidecarName readSubtitleName(const QString &fileName);

/// Reads FILM.EXT or FILM.WORDS.EXT, where EXT is a subtitle extension; the words may be parted by other
/// signs. None when the file is not named after the film.
[[nodiscard]] std::optional<SidecarName> readSidecarName(const QString &filmName, const QString &fileName);

} // namespace murvo::service
