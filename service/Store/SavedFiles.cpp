// SPDX-License-Identifier: GPL-3.0-or-later
#include "Store/SavedFiles.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QStringList>

#include <algorithm>

namespace murvo::service {

namespace {

constexpr qint64 largestBytes = 2LL << 30; // no store is that large
const QString savedNames = QStringLiteral("*.sqlite");
const QString backupNames = QStringLiteral("murvo-before-*.sqlite");

// The folders in which people keep what they save, or get from elsewhere, as far as there are such.
QStringList usualFolders() {
    QStringList folders;
    for (const auto place : {QStandardPaths::DownloadLocation, QStandardPaths::DocumentsLocation,
                             QStandardPaths::DesktopLocation, QStandardPaths::HomeLocation}) {
        const QString folder = QDir(QStandardPaths::writableLocation(place)).canonicalPath();
        if (!folder.isEmpty() && !folders.contains(folder))
            folders.append(folder);
    }
    return folders;
}

// A store says so in its first bytes; one of an earlier version that was saved, not copied by hand, has the
// text of its tables at the beginning. No more is read of a file that nobody has chosen.
bool isStore(const QString &path) {
    constexpr qint64 beginningBytes = 64 << 10;
    constexpr qsizetype applicationIdPlace = 68;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray beginning = file.read(beginningBytes);
    if (!beginning.startsWith("SQLite format 3"))
        return false;
    return beginning.mid(applicationIdPlace, 4) == "Murv" ||
           (beginning.contains("CREATE TABLE films") && beginning.contains("CREATE TABLE settings"));
}

QString idOf(const QString &path) {
    return QString::fromLatin1(
        QCryptographicHash::hash(path.toUtf8(), QCryptographicHash::Sha256).toHex().first(16));
}

void addFrom(const QDir &folder, const QString &names, bool areBackups, QList<SavedFile> &found) {
    for (const QFileInfo &file : folder.entryInfoList({names}, QDir::Files | QDir::NoSymLinks)) {
        if (file.size() <= largestBytes && isStore(file.filePath()))
            found.append({idOf(file.filePath()), file.filePath(), folder.dirName(),
                          file.lastModified().toMSecsSinceEpoch(), file.size(), areBackups});
    }
}

} // namespace

QList<SavedFile> SavedFiles::list() const {
    QList<SavedFile> found;
    for (const QString &folder : usualFolders())
        addFrom(QDir(folder), savedNames, false, found);
    addFrom(QDir(_storeFolder), backupNames, true, found);
    std::stable_sort(found.begin(), found.end(),
                     [](const SavedFile &a, const SavedFile &b) { return a.savedAtMs > b.savedAtMs; });
    return found;
}

std::optional<SavedFile> SavedFiles::find(const QString &id) const {
    const QList<SavedFile> all = list();
    const auto found =
        std::find_if(all.begin(), all.end(), [&id](const SavedFile &each) { return each.id == id; });
    return found == all.end() ? std::nullopt : std::optional(*found);
}

} // namespace murvo::service
