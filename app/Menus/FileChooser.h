// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

class QWidget;

namespace murvo::FileChooser {

/// The modal choosers of the program. They begin in the folder of the film opened last, which is remembered
/// from one start to the next; before the first, in the user's folder of films. Main thread only; each blocks
/// until it is closed, with the event loop running.

/// To be called with each film that is opened, by its path.
void rememberFolderOf(const QString &filmPath);

/// One file of any kind; null when the user cancels.
[[nodiscard]] QString chooseFilm(QWidget *parent);
/// One subtitle file (.srt, .SRT, .sub or .SUB); empty when the user cancels.
[[nodiscard]] QStringList chooseSubtitles(QWidget *parent);

/// Where to keep a file, at first under that name in the folder of documents; the user is asked before one is
/// replaced. Null when the user cancels.
[[nodiscard]] QString chooseFileToSave(QWidget *parent, const QString &suggestedName);

/// The window that the user looks at, which during a film is the page's; window without one.
[[nodiscard]] QWidget *parentAbove(QWidget &window);

} // namespace murvo::FileChooser
