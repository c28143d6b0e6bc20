// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace murvo::service {

struct ZipEntry {
    QString name;
    QByteArray content;
    bool isToBePacked = true; ///< false for what is packed already, as pictures are
};

/// Writes a zip file of the entries in place of what is there. Throws std::runtime_error when it cannot be.
void writeZip(const QString &path, const QList<ZipEntry> &entries);

} // namespace murvo::service
