// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Sources/SidecarName.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace murvo::service {

/// A subtitle file found beside a film, with its bytes.
struct Sidecar {
    QString fileName;
    SidecarName told;
    QByteArray content;
};

/// The subtitle files beside the film at that path, by name; none when the path is empty or names no file.
/// Only regular files that really lie in the film's folder (a link that leads elsewhere is passed over), not
/// larger than a subtitle can be; of a picture subtitle, which is, only the beginning. Any thread; reads the
/// disk.
[[nodiscard]] QList<Sidecar> findSidecars(const QString &filmPath);

/// The bytes of one of them, under the same rules; none when the name is not that of a sidecar of this film.
[[nodiscard]] std::optional<QByteArray> readSidecar(const QString &filmPath, const QString &fileName);

} // namespace murvo::service
