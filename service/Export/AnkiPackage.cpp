// SPDX-License-Identifier: GPL-3.0-or-later
#include "Export/AnkiPackage.h"

#include "Export/AnkiCollection.h"
#include "Export/ZipArchive.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

namespace murvo::service {

void writeAnkiPackage(const QString &path, const QList<AnkiNote> &notes, qint64 nowMs) {
    QList<ZipEntry> entries{{QStringLiteral("collection.anki2"), ankiCollection(notes, nowMs)}};
    QJsonObject names; // files are numbers in the package, and this tells what they are called
    QSet<QString> taken;
    for (const AnkiNote &note : notes) {
        for (const AnkiMedia &file : note.media) {
            if (taken.contains(file.name))
                continue;
            taken.insert(file.name);
            const QString number = QString::number(names.size());
            names.insert(number, file.name);
            entries.append({number, file.content, false});
        }
    }
    entries.append({QStringLiteral("media"), QJsonDocument(names).toJson(QJsonDocument::Compact)});
    writeZip(path, entries);
}

} // namespace murvo::service
