// SPDX-License-Identifier: GPL-3.0-or-later
#include "Sources/FilmFile.h"

#include <QFileInfo>

namespace murvo::service {

bool liesThere(const QString &path, qint64 sizeBytes) {
    if (path.isEmpty())
        return false;
    const QFileInfo file(path);
    return file.isFile() && (sizeBytes == 0 || file.size() == sizeBytes);
}

} // namespace murvo::service
