// SPDX-License-Identifier: GPL-3.0-or-later
#include "Sources/FilmPaths.h"

namespace murvo::service {

void FilmPaths::announce(const QString &path, quint64 movieHash, quint64 sizeBytes) {
    const std::lock_guard lock(_mutex);
    _paths.insert({movieHash, sizeBytes}, path);
}

QString FilmPaths::find(quint64 movieHash, quint64 sizeBytes, const QString &fileName) const {
    const std::lock_guard lock(_mutex);
    QString path = _paths.value({movieHash, sizeBytes});
    const bool hashed = movieHash != 0 || sizeBytes != 0;
    if (hashed || path.isEmpty())
        return path;
    const QString name = path.section(u'/', -1);
    if (fileName.isEmpty() || !name.startsWith(fileName))
        path.clear();
    return path;
}

} // namespace murvo::service
