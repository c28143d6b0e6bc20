// SPDX-License-Identifier: GPL-3.0-or-later
#include "Subtitles/WebVttWriter.h"

namespace murvo::service {

namespace {

QString clockTime(qint64 ms) {
    return QStringLiteral("%1:%2:%3.%4")
        .arg(ms / 3'600'000, 2, 10, QLatin1Char('0'))
        .arg(ms / 60'000 % 60, 2, 10, QLatin1Char('0'))
        .arg(ms / 1000 % 60, 2, 10, QLatin1Char('0'))
        .arg(ms % 1000, 3, 10, QLatin1Char('0'));
}

// Escaping ">" keeps a line that holds an arrow from being read as times.
QString lineOf(const Cue &cue, qsizetype index) {
    const QString &line = cue.lines[index];
    QString written;
    qsizetype done = 0;
    const auto writeUntil = [&line, &written, &done](qsizetype end) {
        written += line.sliced(done, end - done).toHtmlEscaped();
        done = end;
    };
    for (const ItalicRange &range : cue.italics) {
        if (range.line != index)
            continue;
        writeUntil(range.start);
        written += QLatin1String("<i>");
        writeUntil(range.end);
        written += QLatin1String("</i>");
    }
    writeUntil(line.size());
    return written;
}

} // namespace

QByteArray webVtt(const QList<Cue> &cues) {
    QString file = QStringLiteral("WEBVTT\n");
    for (const Cue &cue : cues) {
        file += u'\n' + clockTime(cue.startMs) + QLatin1String(" --> ") + clockTime(cue.endMs) + u'\n';
        for (qsizetype i = 0; i < cue.lines.size(); ++i)
            file += lineOf(cue, i) + u'\n';
    }
    return file.toUtf8();
}

} // namespace murvo::service
