// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace murvo::service {

/// One of the learner's files that can be brought back.
struct SavedFile {
    QString id; ///< tells it from the others; nothing can be told from it
    QString path;
    QString folderName;   ///< as file managers show it
    qint64 savedAtMs = 0; ///< since 1970, UTC
    qint64 sizeBytes = 0;
    bool isBackup = false; ///< the program kept it when another was brought back
};

/// Where files of the learner's lie that were saved from this program: in the folders for downloads,
/// documents and the desktop and in the home folder, whatever their names before ".sqlite", and, as backups,
/// beside the store. Not in their subfolders.
///
/// Any thread. It looks at first bytes only: whether a file is good is LearnerFile's to say.
class SavedFiles {
  public:
    explicit SavedFiles(QString storeFolder)
        : _storeFolder(std::move(storeFolder)) {}

    /// All that lie there now, the newest first.
    [[nodiscard]] QList<SavedFile> list() const;

    /// Nothing when it is no longer there.
    [[nodiscard]] std::optional<SavedFile> find(const QString &id) const;

  private:
    QString _storeFolder;
};

} // namespace murvo::service
