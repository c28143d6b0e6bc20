// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Platform/Log.h"

namespace murvo {

Q_LOGGING_CATEGORY(logApp, "murvo.app")
Q_LOGGING_CATEGORY(logIntake, "murvo.intake")
Q_LOGGING_CATEGORY(logSubtitles, "murvo.subtitles")
Q_LOGGING_CATEGORY(logPlayback, "murvo.playback")
Q_LOGGING_CATEGORY(logVlc, "murvo.vlc", QtWarningMsg)
Q_LOGGING_CATEGORY(logPage, "murvo.page")
Q_LOGGING_CATEGORY(logSound, "murvo.sound")

QString singleLine(QString text) {
    for (QChar &character : text) {
        if (character < u' ' || character == QChar::LineSeparator || character == QChar::ParagraphSeparator)
            character = u' ';
    }
    return text;
}

void installLogFormat() {
    // The web engine's description of the graphics card, twenty lines at each start.
    QLoggingCategory::setFilterRules(QStringLiteral("qt.webenginecontext.info=false"));
    qSetMessagePattern(QStringLiteral("%{time yyyy-MM-dd hh:mm:ss.zzz} %{type} %{category}: %{message}"));
}

} // namespace murvo
