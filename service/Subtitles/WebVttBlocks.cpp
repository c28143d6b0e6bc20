// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/WebVttBlocks.h"

#include <QRegularExpression>
#include <QStringList>

namespace murvo::service {

namespace {

// The timing line as the demuxer reads it, or nothing when it is not one.
QString timingLine(const QString &line) {
    static const QRegularExpression timing(
        QStringLiteral("^\\s*((?:\\d+:)?\\d{1,2}:\\d{1,2})[.,](\\d{3})\\s*-->\\s*"
                       "((?:\\d+:)?\\d{1,2}:\\d{1,2})[.,](\\d{3})"));
    const QRegularExpressionMatch match = timing.match(line);
    if (!match.hasMatch())
        return {};
    return match.captured(1) + u'.' + match.captured(2) + QLatin1String(" --> ") + match.captured(3) + u'.' +
           match.captured(4);
}

// A cue is its timing line and what follows it; an identifier line above it is of no use here.
QString cueBlock(const QStringList &lines) {
    for (qsizetype i = 0; i < lines.size() && i < 2; ++i) {
        if (const QString timing = timingLine(lines[i]); !timing.isEmpty())
            return timing + u'\n' + lines.mid(i + 1).join(u'\n');
    }
    return {};
}

} // namespace

QByteArray cueBlocksOnly(const QByteArray &webVtt) {
    QString text = QString::fromUtf8(webVtt);
    text.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(u'\r', u'\n');
    QString kept = QStringLiteral("WEBVTT\n");
    static const QRegularExpression blankLines(QStringLiteral("\\n(?:[ \\t]*\\n)+"));
    for (const QString &block : text.split(blankLines, Qt::SkipEmptyParts)) {
        if (const QString cue = cueBlock(block.split(u'\n', Qt::SkipEmptyParts)); !cue.isEmpty())
            kept += u'\n' + cue + u'\n';
    }
    return kept.toUtf8();
}

} // namespace murvo::service
