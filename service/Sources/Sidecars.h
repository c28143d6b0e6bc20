// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Sources/SidecarName.h"
#include "Subtitles/CueReader.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace murvo::service {

/// A subtitle file found beside a film.
struct Sidecar {
    QString place; ///< path from the film's folder: "Film.en.srt", "Subs/Film/2_English.srt"
    SidecarName told;
    QByteArray content; ///< empty with a problem
    CueProblem problem =
        CueProblem::None; ///< why the file is not taken, as far as that shows before it is read

    [[nodiscard]] QString fileName() const { return place.section(u'/', -1); }
};

/// The subtitle files of the film at that path, by place; none when the path is empty or names no file:
///  - in its folder those named after it and after no other film there, with or without words that tell more;
///  - beside a lone film also those named by such words only, and a lone file whatever its name;
///  - in the folders Subs or Subtitles those named after it, beside a lone film all, and all in a folder
///  named
///    after it there.
/// Any thread; reads the disk.
[[nodiscard]] QList<Sidecar> findSidecars(const QString &filmPath);

/// The bytes of the one at that place, under the same rules; none when none that can be used is there.
[[nodiscard]] std::optional<QByteArray> readSidecar(const QString &filmPath, const QString &place);

} // namespace murvo::service
