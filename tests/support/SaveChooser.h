// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>

#include <optional>

namespace murvo::test {

/// Answers the program's chooser of a place to save a file with the path, or closes it when the path is
/// empty; for a timer, since the chooser runs the event loop. Returns what it suggested; nothing while there
/// is no such chooser.
[[nodiscard]] inline std::optional<QString> answerSaveChooser(const QString &path) {
    auto *chooser = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
    if (chooser == nullptr)
        return std::nullopt;
    if (!chooser->isActiveWindow()) { // a window manager may withhold the keyboard from what comes unasked
        chooser->activateWindow();
        return std::nullopt;
    }
    QString suggested = chooser->selectedFiles().value(0);
    if (chooser->acceptMode() != QFileDialog::AcceptSave || path.isEmpty()) {
        chooser->reject();
        return suggested;
    }
    chooser->setOption(QFileDialog::DontConfirmOverwrite);
    chooser->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"))->setText(path);
    QMetaObject::invokeMethod(chooser, "accept");
    return suggested;
}

} // namespace murvo::test
