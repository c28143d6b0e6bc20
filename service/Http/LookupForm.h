// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace murvo::service {

/// What the player asks when it looks for the subtitles of a film.
struct LookupForm {
    quint64 sizeBytes = 0;
    quint64 movieHash = 0;
    QString fileName; ///< empty when the player had none; may lack its end
};

/// Reads the lookup's body. It looks like a form but is none: nothing in it is escaped, so that a file name
/// may hold "&" and "=", and for a name outside ASCII the body arrives without its last bytes. Size and hash
/// stand at the front and are always whole; the languages at the end are not needed here. None when size or
/// hash cannot be read.
[[nodiscard]] std::optional<LookupForm> readLookupForm(const QByteArray &body);

} // namespace murvo::service
