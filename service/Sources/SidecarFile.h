// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Subtitles/CueReader.h"

#include <QByteArray>
#include <QString>

namespace murvo::service {

/// A subtitle file as the disk has it, or why it is not taken.
struct SidecarFile {
    QByteArray content; ///< empty with a problem
    CueProblem problem = CueProblem::None;
};

/// Reads the file at the place, a path from the folder, which is canonical. Only a regular file that really
/// lies there, not larger than a subtitle can be; of a larger one only the beginning, to tell whether it
/// holds pictures. A file that changes meanwhile is taken as far as it could be read. Any thread; reads the
/// disk.
[[nodiscard]] SidecarFile readSidecarFile(const QString &canonicalFolder, const QString &place);

} // namespace murvo::service
