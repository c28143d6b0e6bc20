// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLoggingCategory>
#include <QString>

namespace murvo {

Q_DECLARE_LOGGING_CATEGORY(logApp)       // start, end, windows
Q_DECLARE_LOGGING_CATEGORY(logIntake)    // films taken in and looked up
Q_DECLARE_LOGGING_CATEGORY(logSubtitles) // their download and upload
Q_DECLARE_LOGGING_CATEGORY(logPlayback)  // the player
Q_DECLARE_LOGGING_CATEGORY(logVlc)       // what libVLC itself says
Q_DECLARE_LOGGING_CATEGORY(logPage)      // requests and console of the pages
Q_DECLARE_LOGGING_CATEGORY(logSound)     // spoken words

/// The text with its control characters as blanks: what comes from outside must not write log lines of its
/// own.
[[nodiscard]] QString singleLine(QString text);

/// Gives every line on stderr its time, level and category. Call once, before the application object.
void installLogFormat();

} // namespace murvo
