// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Menus/FileChooser.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QSettings>
#include <QStandardPaths>

#include <algorithm>
#include <array>

namespace murvo::FileChooser {

namespace {

const QString folderKey = QStringLiteral("film-folder");
constexpr std::array subtitleTypes = {"srt", "SRT", "sub", "SUB"};

// The chooser takes a folder that is not there for the name of a file.
QString startFolder() {
    const QString films = QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
    for (const QString &folder : {QSettings().value(folderKey).toString(), films}) {
        if (!folder.isEmpty() && QFileInfo(folder).isDir())
            return folder;
    }
    return QDir::homePath();
}

bool isSubtitleName(const QString &path) {
    const QString suffix = QFileInfo(path).suffix();
    return std::any_of(subtitleTypes.begin(), subtitleTypes.end(),
                       [&](const char *type) { return suffix == QLatin1String(type); });
}

QString subtitleFilter() {
    QStringList patterns;
    for (const char *type : subtitleTypes)
        patterns.append(QStringLiteral("*.") + QLatin1String(type));
    return QCoreApplication::translate("FileChooser", "Subtitles (%1)").arg(patterns.join(u' '));
}

} // namespace

void rememberFolderOf(const QString &filmPath) {
    QSettings().setValue(folderKey, QFileInfo(filmPath).absolutePath());
}

QString chooseFilm(QWidget *parent) {
    QFileDialog chooser(parent, QCoreApplication::translate("FileChooser", "Open a film"), startFolder());
    chooser.setFileMode(QFileDialog::ExistingFile);
    if (chooser.exec() != QDialog::Accepted || chooser.selectedFiles().isEmpty())
        return {};
    return chooser.selectedFiles().first();
}

QStringList chooseSubtitles(QWidget *parent) {
    QFileDialog chooser(parent, QCoreApplication::translate("FileChooser", "Choose a subtitle file"),
                        startFolder(), subtitleFilter());
    chooser.setFileMode(QFileDialog::ExistingFile);
    while (chooser.exec() == QDialog::Accepted) {
        QStringList files = chooser.selectedFiles();
        if (!files.isEmpty() && std::all_of(files.cbegin(), files.cend(), isSubtitleName))
            return files;
        // A name can be typed past the filter.
        const auto answer = QMessageBox::information(
            parent, QApplication::applicationName(),
            QCoreApplication::translate("FileChooser", "Only .srt and .sub files can be chosen here."));
        if (answer != QMessageBox::Ok) // another film has come meanwhile
            break;
    }
    return {};
}

QString chooseFileToSave(QWidget *parent, const QString &suggestedName) {
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const bool hasDocuments = !documents.isEmpty() && QFileInfo(documents).isDir();
    QFileDialog chooser(parent, QCoreApplication::translate("FileChooser", "Save as"),
                        hasDocuments ? documents : QDir::homePath());
    chooser.setAcceptMode(QFileDialog::AcceptSave);
    chooser.setFileMode(QFileDialog::AnyFile);
    chooser.selectFile(suggestedName);
    chooser.setDefaultSuffix(QFileInfo(suggestedName).suffix()); // for a name that is typed without
    if (chooser.exec() != QDialog::Accepted || chooser.selectedFiles().isEmpty())
        return {};
    return chooser.selectedFiles().first();
}

QWidget *parentAbove(QWidget &window) {
    QWidget *active = QApplication::activeWindow();
    return active ? active : &window;
}

} // namespace murvo::FileChooser
